#include "tests/fuzz/FuzzApplication.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

[[noreturn]] void endProcess(const char *why)
{
    std::cerr << why << std::endl;
    std::abort();
}

void endProcessWithMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &message)
{
    // The offscreen platform prints these for any input.
    if (!message.startsWith(QLatin1String("This plugin does not support ")) &&
        message != QLatin1String("QOpenGLWidget is not supported on this platform."))
        endProcess(qPrintable("Qt prints: " + message));
}

} // namespace

// Saving does not wait for the disk.
extern "C" int fdatasync(int /*file*/)
{
    return 0;
}

extern "C" int fsync(int /*file*/)
{
    return 0;
}

void startFuzzApplication()
{
    const QByteArray folder = QFile::encodeName(fuzzFolder());
    expect(!folder.isEmpty(), "The run's folder can be made");
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, folder);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("DISPLAY"); // the offscreen platform would use it for OpenGL
    qputenv("QT_SCALE_FACTOR", "1");

    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    // Never deleted: a fuzzer ends with exit, which also destroys Qt's globals.
    static auto *const application = new QApplication(argc, argv);
    Q_UNUSED(application)
    qInstallMessageHandler(endProcessWithMessage);
}

QString fuzzFolder()
{
    static const QTemporaryDir folder;
    return folder.isValid() ? folder.path() : QString();
}

void expect(bool holds, const char *what)
{
    if (!holds)
        endProcess(qPrintable(QStringLiteral("Failed expectation: ") + QLatin1String(what)));
}

bool haveSameBits(const QVector<QVector<float>> &a, const QVector<QVector<float>> &b)
{
    return std::equal(a.cbegin(), a.cend(), b.cbegin(), b.cend(), [](const QVector<float> &x, const QVector<float> &y) {
        const auto bytes = sizeof(float) * static_cast<std::size_t>(x.size());
        return x.size() == y.size() && std::memcmp(x.constData(), y.constData(), bytes) == 0;
    });
}
