#include "tests/soak/Resources.h"

#include <QDir>
#include <QFile>

// After Qt's headers: X11 defines macros with common names.
#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>
#include <malloc.h>

namespace {

/// Returns the number after `key` in a file of /proc.
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
    qFatal("no %s in %s", key.constData(), qPrintable(path));
}

/// Returns an X connection for measuring, separate from Qt's, whose resources are measured.
Display *display()
{
    static Display *const connection = XOpenDisplay(nullptr);
    return connection;
}

} // namespace

Resources measureResources(WId window)
{
    Resources now;
    // First, because the first measurement opens the connection.
    int count = 0;
    XResType *types = nullptr;
    unsigned long bytes = 0;
    if (!display() || !XResQueryClientResources(display(), window, &count, &types) ||
        !XResQueryClientPixmapBytes(display(), window, &bytes))
        qFatal("the X server does not report the resources of its clients");
    for (int i = 0; i < count; ++i) {
        char *const name = XGetAtomName(display(), types[i].resource_type);
        now["X resources " + QString::fromLatin1(name)] += static_cast<qint64>(types[i].count);
        XFree(name);
    }
    XFree(types);
    now["bytes of pixmaps"] = static_cast<qint64>(bytes);

    const struct mallinfo2 info = mallinfo2();
    now["allocated bytes"] = static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
    // Counted page by page: the cheaper counters lag behind.
    now["resident bytes"] = numberIn("/proc/self/smaps_rollup", "Rss:") * 1024;
    now["threads"] = numberIn("/proc/self/status", "Threads:");
    now["open files"] = QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
    return now;
}

QStringList growth(const Resources &first, const Resources &last)
{
    const Resources margins = {{"allocated bytes", 512 << 10}, {"resident bytes", 16 << 20}};
    QStringList grown;
    for (auto each = last.cbegin(); each != last.cend(); ++each) {
        const qint64 before = first.value(each.key());
        if (each.value() > before + margins.value(each.key()))
            grown << QString("%1 from %2 to %3").arg(each.key()).arg(before).arg(each.value());
    }
    return grown;
}
