#include "app/TerminationSignals.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

int pipeEnds[2] = {-1, -1};

extern "C" void writeToPipe(int /*signal*/)
{
    const int before = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1); // a full pipe also wakes the reader
    errno = before;
}

} // namespace
#endif

void closeOnTerminationSignals([[maybe_unused]] QObject *parent)
{
#ifdef Q_OS_UNIX
    if (pipe(pipeEnds) != 0)
        return;
    for (const int end : pipeEnds) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    auto *notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, parent);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false); // ignores further signals
        if (QWidget *focused = QApplication::focusWidget())
            focused->clearFocus(); // commits an open editor
        QApplication::closeAllWindows();
        QCoreApplication::quit(); // closing a minimised or hidden window may not end the event loop
    });

    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = writeToPipe;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
#endif
}
