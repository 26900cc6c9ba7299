#include "tests/soak/Resources.h"

#include <QDir>
#include <QFile>

// After Qt's headers: X11 defines macros of everyday names.
#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>
#include <malloc.h>

namespace {

/// The number after `key` in one of the process's files in /proc.
qint64 numberIn(const QString &path, const QByteArray &key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.mid(key.size()).simplified().split(' ').value(0).toLongLong();
    }
    qFatal("there is no %s in %s", key.constData(), qPrintable(path));
}

/// Bytes that are allocated and not freed, in all arenas.
qint64 allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
}

/// By how many bytes the straight line of least squares through the resident memory of `samples` rises from the first
/// to the last.
double residentGrowth(const QVector<Resources> &samples)
{
    double meanFrames = 0.0;
    double meanBytes = 0.0;
    for (const Resources &sample : samples) {
        meanFrames += static_cast<double>(sample.frames) / samples.size();
        meanBytes += static_cast<double>(sample.resident) / samples.size();
    }
    double together = 0.0;
    double squares = 0.0;
    for (const Resources &sample : samples) {
        const double frames = static_cast<double>(sample.frames) - meanFrames;
        together += frames * (static_cast<double>(sample.resident) - meanBytes);
        squares += frames * frames;
    }
    return together / squares * static_cast<double>(samples.last().frames - samples.first().frames);
}

} // namespace

QString Resources::titles()
{
    return QStringLiteral("  frames   heap kB  resident kB  files  threads  X resources  pixmaps kB");
}

QString Resources::line() const
{
    int sum = 0;
    for (const int each : ofDisplay)
        sum += each;
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
        .arg(frames, 8)
        .arg(heap / 1024, 9)
        .arg(resident / 1024, 12)
        .arg(files, 6)
        .arg(threads, 8)
        .arg(sum, 12)
        .arg(pixmaps / 1024, 11);
}

ResourceMeter::ResourceMeter(WId ownWindow) : window(ownWindow), connection(XOpenDisplay(nullptr))
{
    int event = 0;
    int error = 0;
    if (!connection || !XResQueryExtension(static_cast<Display *>(connection), &event, &error))
        qFatal("the display does not tell what it keeps for us");
}

ResourceMeter::~ResourceMeter()
{
    XCloseDisplay(static_cast<Display *>(connection));
}

Resources ResourceMeter::measure(int frames) const
{
    auto *const display = static_cast<Display *>(connection);
    Resources now;
    now.frames = frames;
    // Page by page: the cheaper counts lag behind.
    now.resident = numberIn(QStringLiteral("/proc/self/smaps_rollup"), "Rss:") * 1024;
    now.heap = allocatedBytes();
    now.threads = static_cast<int>(numberIn(QStringLiteral("/proc/self/status"), "Threads:"));
    now.files =
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();

    int count = 0;
    XResType *types = nullptr;
    unsigned long bytes = 0;
    if (!XResQueryClientResources(display, window, &count, &types) ||
        !XResQueryClientPixmapBytes(display, window, &bytes))
        qFatal("the display does not know us");
    for (int i = 0; i < count; ++i) {
        char *const name = XGetAtomName(display, types[i].resource_type);
        now.ofDisplay[QString::fromLatin1(name)] += static_cast<int>(types[i].count);
        XFree(name);
    }
    XFree(types);
    now.pixmaps = static_cast<qint64>(bytes);
    return now;
}

QStringList judge(const QVector<Resources> &samples)
{
    constexpr qint64 heapMargin = qint64{512} * 1024;
    constexpr qint64 residentMargin = qint64{16} * 1024 * 1024;
    constexpr double slopeMargin = 8.0 * 1024 * 1024;
    constexpr int enoughForALine = 20;

    const Resources &first = samples.first();
    const Resources &last = samples.last();
    QStringList growth;
    const auto check = [&growth](const QString &what, qint64 from, qint64 to, qint64 margin) {
        if (to > from + margin)
            growth << QStringLiteral("%1 from %2 to %3").arg(what).arg(from).arg(to);
    };
    check(QStringLiteral("heap, bytes"), first.heap, last.heap, heapMargin);
    check(QStringLiteral("resident memory, bytes"), first.resident, last.resident, residentMargin);
    check(QStringLiteral("open files"), first.files, last.files, 0);
    check(QStringLiteral("threads"), first.threads, last.threads, 0);
    check(QStringLiteral("bytes of pixmaps"), first.pixmaps, last.pixmaps, 0);
    for (auto type = last.ofDisplay.cbegin(); type != last.ofDisplay.cend(); ++type)
        check(QStringLiteral("display resources of type %1").arg(type.key()), first.ofDisplay.value(type.key()),
              type.value(), 0);

    const QVector<Resources> later = samples.mid(samples.size() / 2);
    if (samples.size() >= enoughForALine && residentGrowth(later) > slopeMargin)
        growth
            << QStringLiteral("resident memory in the second half, by %1 bytes").arg(residentGrowth(later), 0, 'f', 0);
    return growth;
}
