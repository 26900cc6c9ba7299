// Time and peak memory of a paste from another program (xclip), for texts of several shapes and sizes. Both should be
// proportional to the size of the text. Requires a display: scripts/on-virtual-display.sh PasteBenchmark

#include "app/Clipboard.h"
#include "engine/Pendrix3D.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTextStream>
#include <QThread>

#include <utility>

namespace {

/// Returns a value of this process's memory status in MB, such as "VmHWM", the peak of its resident memory.
double megabytesOf(const QByteArray &name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return 0.0;
}

/// Resets the peak of the resident memory to its current value.
void resetPeak()
{
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    if (references.open(QIODevice::WriteOnly))
        references.write("5");
}

void copyElsewhere(const QByteArray &text)
{
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"), {QStringLiteral("-selection"), QStringLiteral("clipboard")});
    xclip.write(text);
    xclip.closeWriteChannel();
    xclip.waitForFinished(-1);
    QThread::msleep(200); // until its child process owns the selection
    QCoreApplication::processEvents();
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QTextStream out(stdout);
    const std::pair<const char *, QByteArray> shapes[] = {
        {"lines without a row", "123456789\n"},
        {"one line", "1234567890"},
        {"one line of tabs", "\t"},
        {"good lines", "1\t2\t3\t4\t5\t6\n"},
    };
    out << "text                       MB   all s   ours s   peak MB   MB per MB\n";
    for (const auto &[name, piece] : shapes) {
        for (const int megabytes : {25, 50, 100}) {
            copyElsewhere(piece.repeated(megabytes * 1000000 / piece.size()));
            resetPeak();
            const double before = megabytesOf("VmRSS");
            QElapsedTimer clock;
            clock.start();
            pasteParamsFromClipboard(pdx3);
            const double all = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
            const double peak = megabytesOf("VmHWM") - before;

            // Once more from this process's clipboard, without the transfer through the X server.
            QGuiApplication::clipboard()->setText(QGuiApplication::clipboard()->text());
            clock.restart();
            pasteParamsFromClipboard(pdx3);
            const double ours = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
            out << QString::asprintf("%-24s %5d %7.2f %8.2f %9.0f %11.1f\n", name, megabytes, all, ours, peak,
                                     peak / megabytes);
            out.flush();
        }
    }
    return 0;
}
