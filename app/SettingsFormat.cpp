#include "app/SettingsFormat.h"

#include "engine/Pendrix3D.h"

#include <QDataStream>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <string_view>
#include <vector>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

/// The largest file that is read or written, in bytes. A saved file has about 5 KB. The most expensive content of this
/// size, one long value, takes 390 MB and 2.4 s to load and save.
constexpr qint64 maxFileSize = 64 << 20;

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

constexpr const char *keys[] = {SettingsKey::colsWidth, SettingsKey::geometry, SettingsKey::paramList,
                                SettingsKey::windowState};

constexpr quint32 userType = 127;     // a type with a name, in streams of the version Qt_4_0
constexpr char letters[] = "abtnvfr"; // of the escapes \a to \r, in the order of their codes

/// Returns the bytes of the value `text`, without quotes and with the escapes of QSettings replaced.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray bytes;
    for (const char *at = text.begin(); at != text.end();) {
        const char next = *at == '\\' ? at[1] : '\0';
        const char *letter = next == '\0' ? nullptr : std::strchr(letters, next);
        if (letter || next == '\\' || next == '"') {
            bytes += letter ? static_cast<char>('\a' + (letter - letters)) : next;
            at += 2;
        } else if (*at == '\\') {
            uint code = 0;
            at = std::from_chars(next == 'x' ? at + 2 : at + 1, text.end(), code, next == 'x' ? 16 : 8).ptr;
            bytes += static_cast<char>(code);
        } else if (*at++ != '"') {
            bytes += at[-1];
        }
    }
    return bytes;
}

/// Returns the text of the value `bytes`, with quotes and escapes as QSettings writes them.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    bool isAfterNumber = false; // a hexadecimal digit would continue the numeric escape, so it is escaped, too
    for (const char byte : bytes) {
        const bool isLetter = byte >= '\a' && byte <= '\r';
        const bool isPlain = byte >= ' ' && byte <= '~' && !(isAfterNumber && std::isxdigit(byte));
        isAfterNumber = !isLetter && !isPlain;
        if (isLetter)
            text += QByteArray("\\") + letters[byte - '\a'];
        else if (isAfterNumber)
            text += byte == '\0' ? "\\0" : "\\x" + QByteArray::number(static_cast<uchar>(byte), 16);
        else
            text += byte == '"' || byte == '\\' ? QByteArray("\\") + byte : QByteArray(1, byte);
    }
    const bool needsQuotes = bytes.contains(';') || bytes.contains(',') || bytes.contains('=');
    return needsQuotes ? '"' + text + '"' : text;
}

/// Reads past a streamed vector and returns whether all its elements exist: elements of 4 bytes at depth 1, 64 vectors
/// of such elements at depth 2. QDataStream would allocate memory for a damaged count.
bool hasElements(QDataStream &stream, int depth)
{
    quint32 count = 0;
    stream >> count;
    if (count > stream.device()->bytesAvailable() / 4 || (depth == 2 && count != Pendrix3D::rowCount))
        return false;
    if (depth == 1)
        return stream.skipRawData(static_cast<int>(count) * 4) >= 0;
    for (; count > 0 && hasElements(stream, depth - 1); --count) {
    }
    return count == 0;
}

/// Returns the value of `key` from its text, or an invalid variant if it is malformed or of another type.
QVariant decoded(std::string_view key, std::string_view text)
{
    const int depth = key == SettingsKey::paramList ? 2 : key == SettingsKey::colsWidth ? 1 : 0;
    const QByteArray form = depth > 0 ? "@Variant(" : "@ByteArray(";
    const QByteArray value = unescaped(QByteArray(text.data(), static_cast<int>(text.size())).trimmed());
    if (!value.startsWith(form) || !value.endsWith(')'))
        return {};
    const QByteArray bytes = value.mid(form.size()).chopped(1);
    if (depth == 0)
        return bytes;

    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 type = 0;
    QByteArray name;
    stream >> type >> name;
    name.replace("> >", ">>").replace("QList<", "QVector<"); // Qt 5 writes the blank, Qt 6 writes QList
    const char *typeName = depth == 1 ? "QVector<int>" : "QVector<QVector<float>>";
    if (type != userType || name != QByteArray(typeName) + '\0')
        return {};
    const qint64 start = stream.device()->pos();
    if (!hasElements(stream, depth) || !stream.atEnd() || !stream.device()->seek(start))
        return {};
    QVector<int> widths;
    QVector<QVector<float>> rows;
    if (depth == 1)
        stream >> widths;
    else
        stream >> rows;
    return depth == 1 ? QVariant::fromValue(widths) : QVariant::fromValue(rows);
}

/// Returns the entry of `key` as QSettings of Qt 5 writes it.
QByteArray encoded(const QString &key, const QVariant &value)
{
    QByteArray bytes = value.toByteArray();
    const bool isVariant = value.userType() != QMetaType::QByteArray;
    if (isVariant) {
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_4_0);
        stream << userType;
        if (key == SettingsKey::colsWidth)
            stream << "QVector<int>" << value.value<QVector<int>>();
        else
            stream << "QVector<QVector<float> >" << value.value<QVector<QVector<float>>>();
    }
    return key.toLatin1() + '=' + escaped((isVariant ? "@Variant(" : "@ByteArray(") + bytes + ')');
}

/// One of the program's entries in the text of a settings file, or, with a null key, the end of a [General] line.
struct Entry
{
    const char *key;
    std::string_view text;
};

/// Returns the part of `line` before an unquoted semicolon, which starts a comment.
std::string_view withoutComment(std::string_view line)
{
    std::size_t end = 0;
    for (bool isQuoted = false; end < line.size() && (isQuoted || line[end] != ';'); ++end) {
        if (line[end] == '\\')
            ++end;
        else if (line[end] == '"')
            isQuoted = !isQuoted;
    }
    return line.substr(0, end);
}

/// Returns the program's entries in `text`, as parts of it. As in QSettings, those before the first section belong to
/// [General].
///
/// An entry ends with its line. QSettings continues an entry after a quoted or escaped line end. It never writes one,
/// but with that rule, a damaged quote or backslash would hide the entries of other lines.
std::vector<Entry> entriesIn(const QByteArray &text)
{
    std::vector<Entry> entries;
    std::string_view rest(text.constData(), static_cast<std::size_t>(text.size()));
    rest.remove_prefix(text.startsWith(byteOrderMark) ? 3 : 0);
    for (bool isGeneral = true; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::string_view start = line.substr(std::min(line.find_first_not_of(" \t\v\f"), line.size()));
        if (start.substr(0, 1) == "[") {
            const std::string_view name = start.substr(1, start.find(']') - 1);
            const QLatin1String section = QLatin1String(name.data(), static_cast<int>(name.size())).trimmed();
            isGeneral = section.size() == 7 && section.startsWith(QLatin1String("general"), Qt::CaseInsensitive);
            if (isGeneral)
                entries.push_back({nullptr, line.substr(line.size())});
        } else if (isGeneral && start.find('=') < start.size()) {
            std::string_view name = start.substr(0, start.find('='));
            name = name.substr(0, name.find_last_not_of(" \t") + 1);
            const auto *const key = std::find(std::begin(keys), std::end(keys), name);
            if (key != std::end(keys))
                entries.push_back({*key, withoutComment(start)});
        }
    }
    return entries;
}

bool readWhole(QIODevice &file, QByteArray &content)
{
    if (file.size() > maxFileSize)
        return false;
    content = file.readAll();
    return static_cast<QFileDevice &>(file).error() == QFileDevice::NoError && content.size() == file.size();
}

} // namespace

bool readSettings(QIODevice &file, QSettings::SettingsMap &values)
{
    QByteArray text;
    if (!readWhole(file, text))
        return false;
    for (const Entry &entry : entriesIn(text)) {
        if (!entry.key)
            continue;
        const QVariant value = decoded(entry.key, entry.text.substr(entry.text.find('=') + 1));
        if (value.isValid())
            values.insert(entry.key, value); // the last of several entries wins, as in QSettings
    }
    return true;
}

bool writeSettings(QIODevice &file, const QSettings::SettingsMap &values)
{
    auto &saveFile = static_cast<QFileDevice &>(file);
    QByteArray text;
    QFile present(saveFile.fileName());
    if (present.open(QIODevice::ReadOnly) ? !readWhole(present, text) : QFileInfo::exists(present.fileName()))
        return false;

    QSettings::SettingsMap remaining = values;
    QByteArray result;
    const char *copied = text.constData();
    auto sectionEnd = result.size() - 1; // none
    for (const Entry &entry : entriesIn(text)) {
        result.append(copied, static_cast<int>(entry.text.data() - copied));
        copied = entry.text.data() + entry.text.size();
        if (!entry.key)
            sectionEnd = result.size();
        else if (remaining.contains(entry.key)) // drops entries without a value and second entries of a key
            result += encoded(entry.key, remaining.take(entry.key));
    }
    result.append(copied, static_cast<int>(text.constData() + text.size() - copied));
    QByteArray added;
    for (auto it = remaining.cbegin(); it != remaining.cend(); ++it)
        added += '\n' + encoded(it.key(), it.value());
    if (sectionEnd < 0) {
        sectionEnd = text.startsWith(byteOrderMark) ? 3 : 0;
        added = "[General]" + added + '\n';
    }
    result.insert(sectionEnd, added);

    if (result.size() > maxFileSize || saveFile.write(result) != result.size() || !saveFile.flush())
        return false;
#ifdef Q_OS_UNIX
    return fsync(saveFile.handle()) == 0; // QSaveFile calls fsync, too, but ignores errors
#else
    return true;
#endif
}
