#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>
#include <qwindowdefs.h>

/// What the process holds at a moment.
struct Resources
{
    int frames = 0;
    /// Bytes that are allocated; what is freed and not given back to the system does not count.
    qint64 heap = 0;
    /// Resident bytes.
    qint64 resident = 0;
    int files = 0;
    int threads = 0;
    /// Resources that the display server keeps for us, by their types.
    QMap<QString, int> ofDisplay;
    qint64 pixmaps = 0;

    /// The heading of a table whose lines are those of `line`.
    static QString titles();
    QString line() const;
};

/// Measures this process.
class ResourceMeter
{
public:
    /// `ownWindow` is any of our windows: it tells the display server who we are.
    explicit ResourceMeter(WId ownWindow);
    ~ResourceMeter();
    Q_DISABLE_COPY(ResourceMeter)

    Resources measure(int frames) const;

private:
    WId window;
    void *connection; // to the display, of its own: measuring must not change what is measured
};

/// What has grown from the first of `samples` to the last, in words; empty if nothing has.
///
/// Open files, threads, pixmaps and each type of what the display server keeps must not be more at all. Allocated
/// memory may be 512 kB more: in 100,000 frames it was seen between 24.0 and 24.6 MB. Resident memory may be 16 MB
/// more, for the allocator does not give back what lies between; that was seen to make 10 MB. With 20 samples or more,
/// the straight line through the resident memory of the second half must not rise by 8 MB.
QStringList judge(const QVector<Resources> &samples);
