#include "export/RowSource.h"

#include "app/Settings.h"
#include "engine/RowText.h"
#include "export/ExportError.h"

#include <QFile>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>

#ifdef Q_OS_UNIX
#include <poll.h>
#endif

namespace {

/// Returns whether the failed read of `file` can be repeated. Waits for data if the file is non-blocking, as standard
/// input is if another program has made it so.
bool canContinue(std::FILE *file)
{
#ifdef Q_OS_UNIX
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
        pollfd descriptor = {fileno(file), POLLIN, 0};
        (void)poll(&descriptor, 1, -1);
        errno = EINTR;
    }
#endif
    if (errno != EINTR)
        return false;
    std::clearerr(file);
    return true;
}

/// Returns the UTF-8 text of the file at `path`; "-" is standard input. Throws if it cannot be read or is too large.
///
/// Uses stdio, because QFile makes standard input non-blocking and treats a pause of a pipe as its end.
QString textOfFile(const QString &path)
{
    constexpr int maxBytes = 256 << 20; // limits the memory that an endless file or pipe can take
    const auto unreadable = [&path] {
        return failure(QStringLiteral("cannot read rows"), path + QStringLiteral(": ") + qt_error_string(errno));
    };
    std::unique_ptr<std::FILE, void (*)(std::FILE *)> file(stdin, [](std::FILE * /*stdin*/) {});
    if (path != QLatin1String("-"))
        file = {std::fopen(QFile::encodeName(path).constData(), "rb"), [](std::FILE *f) { (void)std::fclose(f); }};
    if (!file)
        throw unreadable();
    QByteArray bytes;
    char part[65536];
    while (bytes.size() <= maxBytes) {
        const std::size_t length = std::fread(part, 1, sizeof part, file.get());
        bytes.append(part, static_cast<int>(length));
        if (length == sizeof part)
            continue;
        if (std::ferror(file.get()) == 0)
            return QString::fromUtf8(bytes.constData(), bytes.size()); // the length, because bytes may be NUL
        if (!canContinue(file.get()))
            throw unreadable();
    }
    throw failure(QStringLiteral("too many rows"), path);
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

} // namespace

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
