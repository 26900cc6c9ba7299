#include "export/Export.h"

#include "export/ExportError.h"
#include "export/Process.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

/// Returns the curve of `row` in the colours of `options`. Throws if it cannot be exported.
Curve exportableCurve(const QVector<float> &row, const Options &options)
{
    if (options.page.isSmooth) {
        for (int i = 0; i < 3; ++i) {
            const auto frequency = static_cast<double>(row.at(i));
            if (std::abs(frequency) > maxSmoothFrequency)
                throw failure(QStringLiteral("cannot use --smooth"),
                              QStringLiteral("freq%1 is %2: above %3, the figure is made of the straight lines")
                                  .arg(i + 1)
                                  .arg(frequency)
                                  .arg(maxSmoothFrequency, 0, 'f', 1));
        }
    }
    Curve curve = curveOf(row);
    const int nonFinite = firstNonFinite(curve);
    if (nonFinite >= 0)
        throw failure(QStringLiteral("curve is not finite"), QStringLiteral("vertex %1").arg(nonFinite));
    if (options.color.isValid())
        curve.colors.fill(options.color.rgb());
    return curve;
}

/// Writes `content` to the file at `path`, completely or not at all. Follows symbolic links. Throws on errors.
void save(const QByteArray &content, const QString &path)
{
    QFileInfo target(path);
    for (int links = 0; target.isSymLink(); ++links) {
        if (links == 40) // the limit of Linux
            throw failure(QStringLiteral("too many links"), path);
        target.setFile(target.symLinkTarget());
        if (target.filePath().contains(QChar::ReplacementCharacter)) // only with Qt 6; see ExportError
            throw failure(QStringLiteral("the link's target is not UTF-8"), path);
    }
    if (target.exists() && !target.isFile())
        throw failure(QStringLiteral("not a regular file"), path);
    QSaveFile file(target.filePath());
    bool isWritten = file.open(QIODevice::WriteOnly);
    // A short write sets no error string. The attempt to write the rest does.
    for (qint64 done = 0; isWritten && done < content.size();) {
        const qint64 part = file.write(content.constData() + done, content.size() - done);
        isWritten = part > 0;
        done += part;
    }
    // Without flush, commit misses an error in writing the last bytes.
    if (!isWritten || !file.flush() || !file.commit())
        throw failure(QStringLiteral("cannot write"), path + QStringLiteral(": ") + file.errorString());
}

/// A progress bar on standard error; invisible unless standard error is a terminal.
class Progress
{
public:
    explicit Progress(int count) : total(count) {}
    ~Progress() { print("\r\033[K"); } // erases the line
    Q_DISABLE_COPY(Progress)

    void show(int done) const
    {
        constexpr int width = 40;
        const int full = done * width / total;
        print('\r' + ('[' + QByteArray(full, '#') + QByteArray(width - full, ' ') + "] ") + QByteArray::number(done) +
              '/' + QByteArray::number(total));
    }

private:
    void print(const QByteArray &text) const
    {
        if (isVisible)
            (void)std::fputs(text.constData(), stderr);
    }

    int total;
#ifdef Q_OS_UNIX
    bool isVisible = isatty(STDERR_FILENO) == 1;
#else
    bool isVisible = false;
#endif
};

/// The export of one or more frames. The engine computes one curve after the other. Threads draw, encode and save them.
class Export
{
public:
    explicit Export(const Options &exported) : options(exported), nextRow(rowOf(exported.row))
    {
        advance(nextRow, options.firstFrame);
        if (options.margin)
            page.fit = fitOf(boundsOfAllFrames(), page, *options.margin);
    }

    void exportFile()
    {
        const QByteArray content = contentOf(nextFrame());
        if (options.file == QLatin1String("-"))
            printContent(content);
        else
            save(content, options.file);
    }

    void exportNumberedFiles()
    {
        const Progress progress(options.frameCount);
        int done = 0;
        std::exception_ptr error;
        const auto exportFrames = [&] {
            std::unique_lock<std::mutex> lock(mutex);
            while (frameIndex < options.frameCount && !error) {
                try {
                    const Frame frame = nextFrame();
                    lock.unlock();
                    save(contentOf(frame), numberedPath(options.file, frame.index + 1));
                    lock.lock();
                    progress.show(++done);
                } catch (...) {
                    if (!lock.owns_lock())
                        lock.lock();
                    if (!error)
                        error = std::current_exception();
                }
            }
        };
        std::vector<std::thread> threads;
        try {
            for (int i = 1; i < threadCount(); ++i)
                threads.emplace_back(exportFrames);
        } catch (const std::system_error &) {
            // No more threads are available. This one is enough.
        }
        exportFrames();
        for (std::thread &thread : threads)
            thread.join();
        if (error)
            std::rethrow_exception(error);
    }

    /// Returns whether an exported curve has left its page.
    bool leftPage() const { return isBeyondPage; }

private:
    struct Frame
    {
        int index; ///< from 0
        Curve curve;
    };

    Page pageOfFrame(int index) const
    {
        Page rotated = page;
        rotated.turn = options.turnOfFrame(index);
        return rotated;
    }

    /// Computes the next frame. Not re-entrant, because the engine is global.
    Frame nextFrame()
    {
        Frame frame{frameIndex++, exportableCurve(nextRow, options)};
        advance(nextRow, options.frameStep);
        return frame;
    }

    /// Returns the bounds of the drawings of all frames on the page without fit.
    QRectF boundsOfAllFrames()
    {
        const QVector<float> firstRow = nextRow;
        QRectF bounds;
        for (int i = 0; i < std::max(options.frameCount, 1); ++i) {
            const Frame frame = nextFrame();
            const QRectF one = drawingOf(frame.curve, pageOfFrame(frame.index)).bounds();
            // Unlike QRectF::united, also for rectangles without area.
            bounds =
                i == 0
                    ? one
                    : QRectF(QPointF(std::min(bounds.left(), one.left()), std::min(bounds.top(), one.top())),
                             QPointF(std::max(bounds.right(), one.right()), std::max(bounds.bottom(), one.bottom())));
        }
        nextRow = firstRow;
        frameIndex = 0;
        return bounds;
    }

    /// Returns the content of the file of `frame`. Thread-safe.
    QByteArray contentOf(const Frame &frame)
    {
        const Format &format = *options.format;
        if (format.list != nullptr)
            return format.list(frame.curve);
        const Page framePage = pageOfFrame(frame.index);
        const Drawing drawing = drawingOf(frame.curve, framePage);
        QByteArray content = format.draw(drawing, framePage);
        if (content.isEmpty())
            throw failure(QStringLiteral("cannot export"), QStringLiteral("not enough memory for the image"));
        if (!options.margin && leavesPage(drawing, framePage)) {
            const std::lock_guard<std::mutex> lock(mutex);
            isBeyondPage = true;
        }
        return content;
    }

    /// Returns the number of threads that export frames: one per processor, but no more than 1 GiB of images at a time.
    int threadCount() const
    {
        const bool isImage = (options.format->features & Pixels) != 0;
        const double imageSize = isImage ? page.width * page.height * 4.0 : 1.0;
        const double maxThreads = std::max((1 << 30) / imageSize, 1.0);
        return static_cast<int>(std::min(
            {static_cast<double>(QThread::idealThreadCount()), maxThreads, static_cast<double>(options.frameCount)}));
    }

    const Options &options;
    Page page = options.page;
    std::mutex mutex;          ///< protects the members below
    QVector<float> nextRow;    ///< of the frame `frameIndex`
    int frameIndex = 0;        ///< of the next frame
    bool isBeyondPage = false; ///< whether a curve has left its page
};

} // namespace

void exportCurves(const Options &options)
{
    Export frames(options);
    if (options.frameCount == 0)
        frames.exportFile();
    else
        frames.exportNumberedFiles();
    if (frames.leftPage())
        printWarning(QStringLiteral("the curve leaves the page; use --margin to fit it into the page"));
}
