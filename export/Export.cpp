#include "export/Export.h"

#include "app/Settings.h"
#include "engine/RowText.h"
#include "export/Curve.h"
#include "export/ExportError.h"
#include "export/Writers.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cmath>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

ExportError failure(const QString &problem, const QString &detail)
{
    return {ExportError::failure, problem, detail};
}

/// Returns the UTF-8 text of the file at `path`; "-" is standard input. Throws if it cannot be read or is too large.
QString textOfFile(const QString &path)
{
    constexpr qint64 mostBytes = 256 << 20; // more than twice the largest clipboard text of the tests
    QFile file;
    const bool isOpen = path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                   : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    const QByteArray bytes = isOpen ? file.read(mostBytes + 1) : QByteArray();
    if (file.error() != QFile::NoError)
        throw failure(QStringLiteral("cannot read rows"), path + QStringLiteral(": ") + file.errorString());
    if (bytes.size() > mostBytes)
        throw failure(QStringLiteral("too many rows"), path);
    return QString::fromUtf8(bytes);
}

/// Returns row `number`, from 1, of the text file at `path`. Throws unless it exists and has six finite numbers.
QVector<float> rowOfText(const QString &path, int number)
{
    const QString text = textOfFile(path);
    QStringView rest(text);
    RowFields fields;
    for (int row = 1; row <= number; ++row) {
        if (!takeRow(rest, fields))
            throw failure(QStringLiteral("no row %1").arg(number), path);
    }
    QVector<float> row;
    for (const QStringView field : fields) {
        const auto value = valueOfField(field);
        if (!value || !std::isfinite(*value))
            throw failure(QStringLiteral("row %1 has a field that is not a finite number").arg(number), path);
        row.append(*value);
    }
    return row;
}

/// Returns row `number`, from 1, of the settings; the built-in row if the settings have no valid parameter list.
QVector<float> rowOfSettings(int number)
{
    const auto settings = openSettings();
    const auto rows = settings ? storedParamList(*settings) : QVector<QVector<float>>();
    return rows.isEmpty() ? pdx3.paramList.at(number - 1) : rows.at(number - 1);
}

QVector<float> rowOf(const RowSource &source)
{
    switch (source.kind) {
    case RowSource::Values:
        return source.values;
    case RowSource::Text:
        return rowOfText(source.file, source.number);
    case RowSource::Settings:
        return rowOfSettings(source.number);
    case RowSource::Preset:
        break;
    }
    return pdx3.presets.at(source.number - 1);
}

QByteArray contentOf(const Curve &curve, const Options &options)
{
    switch (options.format) {
    case Format::Png:
        return pngOf(curve, options.page);
    case Format::Svg:
        return svgOf(curve, options.page);
    case Format::Pdf:
        return pdfOf(curve, options.page);
    case Format::Ply:
        return plyOf(curve);
    case Format::Csv:
        break;
    }
    return csvOf(curve);
}

/// Writes `content` to the file at `path`, completely or not at all. Follows symbolic links. Throws on errors.
void save(const QByteArray &content, const QString &path)
{
    QFileInfo target(path);
    for (int links = 0; target.isSymLink(); ++links) {
        if (links == 40) // the limit of Linux
            throw failure(QStringLiteral("too many links"), path);
        target.setFile(target.symLinkTarget());
    }
    if (target.exists() && !target.isFile())
        throw failure(QStringLiteral("not a regular file"), path);
    QSaveFile file(target.filePath());
    // Without flush, commit misses an error in writing the last bytes.
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush() || !file.commit())
        throw failure(QStringLiteral("cannot write"), path + QStringLiteral(": ") + file.errorString());
}

/// Exports the curve of `row` to the file at `path`.
void exportCurve(const QVector<float> &row, const Options &options, const QString &path)
{
    Curve curve = curveOf(row);
    const int nonFinite = firstNonFinite(curve);
    if (nonFinite >= 0)
        throw failure(QStringLiteral("curve is not finite"), QStringLiteral("vertex %1").arg(nonFinite));
    if (options.color.isValid()) {
        for (CurveVertex &v : curve)
            v.color = options.color.rgb();
    }

    const QByteArray content = contentOf(curve, options);
    if (content.isEmpty())
        throw failure(QStringLiteral("cannot export"), QStringLiteral("not enough memory for the image"));
    save(content, path);
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

} // namespace

void exportCurves(const Options &options)
{
    QVector<float> row = rowOf(options.row);
    advance(row, options.firstFrame);
    if (options.frameCount == 0) {
        exportCurve(row, options, options.file);
        return;
    }
    const Progress progress(options.frameCount);
    for (int frame = 1; frame <= options.frameCount; ++frame) {
        exportCurve(row, options, numberedPath(options.file, frame));
        advance(row, 1);
        progress.show(frame);
    }
}
