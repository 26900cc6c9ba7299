#include "app/SettingsFormat.h"

#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QVector>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

constexpr QLatin1String keys[] = {SettingsKey::colsWidth, SettingsKey::geometry, SettingsKey::paramList,
                                  SettingsKey::windowState};
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
constexpr char letters[] = "abtnvfr"; // of the escapes for \a to \r

/// Returns the bytes of a value from its text, without the quotes and escapes that QSettings writes.
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

/// Returns the text of a value as QSettings writes it.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    bool isAfterNumber = false; // which a digit would continue
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

/// Returns whether `stream` has all elements that its counts promise: of 4 bytes at depth 1, of vectors at depth 2.
bool hasElements(QDataStream &stream, int depth)
{
    quint32 count = 0;
    stream >> count;
    if (count > stream.device()->bytesAvailable() / 4)
        return false;
    if (depth == 1)
        return stream.skipRawData(static_cast<int>(count) * 4) >= 0;
    for (; count > 0 && hasElements(stream, depth - 1); --count) {
    }
    return count == 0;
}

/// Returns the value of `key` from its text, or an invalid variant if it is malformed or of another type.
QVariant decoded(QLatin1String key, const QByteArray &text)
{
    const int depth = key == SettingsKey::paramList ? 2 : key == SettingsKey::colsWidth ? 1 : 0;
    const QByteArray form = depth > 0 ? "@Variant(" : "@ByteArray(";
    const QByteArray value = unescaped(text.trimmed());
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
    name.replace("> >", ">>"); // Qt 5 writes the blank
    const char *typeName = depth == 1 ? "QVector<int>" : "QVector<QVector<float>>";
    if (type != 127 || name != QByteArray(typeName) + '\0' || !hasElements(stream, depth) || !stream.atEnd())
        return {};
    stream.device()->seek(0);
    QVariant container;
    stream >> container;
    return container;
}

/// Returns the entry of `key` as QSettings writes it.
QByteArray encoded(QLatin1String key, const QVariant &value)
{
    QByteArray bytes = value.toByteArray();
    const bool isVariant = value.userType() != QMetaType::QByteArray;
    if (isVariant) {
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_4_0);
        stream << value;
    }
    return key.data() + ('=' + escaped((isVariant ? "@Variant(" : "@ByteArray(") + bytes + ')'));
}

bool endsLine(char character)
{
    return character == '\n' || character == '\r';
}

/// Returns the end of the entry at `start`: the next unquoted line end or semicolon, but the next line end of a comment
/// and if a quote never closes.
int endOfEntry(const QByteArray &text, int start)
{
    bool isQuoted = text.at(start) == ';';
    for (int at = isQuoted ? text.size() : start; at < text.size(); ++at) {
        if (!isQuoted && (endsLine(text.at(at)) || text.at(at) == ';'))
            return at;
        if (text.at(at) == '\\')
            ++at;
        else if (text.at(at) == '"')
            isQuoted = !isQuoted;
    }
    return isQuoted ? static_cast<int>(std::find_if(text.begin() + start, text.end(), endsLine) - text.begin())
                    : text.size();
}

/// The place of one of our entries in the text of a settings file. Without a key: the end of the first [General] line.
struct Entry
{
    QLatin1String key;
    int start;
    int end;
};

/// Returns our entries in `text`. As in QSettings, those before the first section belong to [General].
QVector<Entry> entriesIn(const QByteArray &text)
{
    QVector<Entry> entries;
    bool isGeneral = true;
    bool hasGeneral = false;
    for (int at = text.startsWith(byteOrderMark) ? 3 : 0, end = at; at < text.size(); at = end) {
        const bool isBlank = text.at(at) == ' ' || text.at(at) == '\t' || endsLine(text.at(at));
        end = isBlank ? at + 1 : endOfEntry(text, at);
        const QByteArray entry = QByteArray::fromRawData(text.constData() + at, end - at);
        const int equals = entry.indexOf('=');
        if (entry.startsWith('[')) {
            isGeneral = entry.mid(1, entry.indexOf(']') - 1).trimmed().toLower() == "general";
            if (isGeneral && !hasGeneral)
                entries.append({QLatin1String(), end, end});
            hasGeneral = hasGeneral || isGeneral;
        } else if (isGeneral && equals >= 0) {
            const auto *key = std::find(std::begin(keys), std::end(keys), QLatin1String(entry.left(equals).trimmed()));
            if (key != std::end(keys))
                entries.append({*key, at, end});
        }
    }
    return entries;
}

bool readWhole(QIODevice &file, QByteArray &content)
{
    content = file.readAll();
    return static_cast<QFileDevice &>(file).error() == QFileDevice::NoError && content.size() == file.size();
}

} // namespace

bool readSettings(QIODevice &file, QSettings::SettingsMap &values)
{
    QByteArray text;
    if (!readWhole(file, text))
        return false;
    const QVector<Entry> entries = entriesIn(text);
    for (const Entry &entry : entries) {
        const QByteArray assignment = text.mid(entry.start, entry.end - entry.start);
        const QVariant value = decoded(entry.key, assignment.mid(assignment.indexOf('=') + 1));
        if (value.isValid())
            values.insert(entry.key, value); // the last of several, as QSettings does
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

    const auto isGeneral = [](const Entry &entry) { return entry.key.isNull(); };
    QVector<Entry> entries = entriesIn(text);
    if (std::none_of(entries.cbegin(), entries.cend(), isGeneral)) {
        text.insert(text.startsWith(byteOrderMark) ? 3 : 0, "[General]\n");
        entries = entriesIn(text);
    }
    QSettings::SettingsMap remaining = values;
    QByteArray result;
    int copied = 0;
    int generalEnd = 0;
    for (const Entry &entry : qAsConst(entries)) {
        result += text.mid(copied, entry.start - copied);
        copied = entry.end;
        if (isGeneral(entry))
            generalEnd = result.size();
        else if (remaining.contains(entry.key)) // else a second entry of this key, which is dropped
            result += encoded(entry.key, remaining.take(entry.key));
    }
    result += text.mid(copied);
    QByteArray added;
    for (const QLatin1String key : keys) {
        if (remaining.contains(key))
            added += '\n' + encoded(key, remaining.take(key));
    }
    result.insert(generalEnd, added);

    if (saveFile.write(result) != result.size() || !saveFile.flush())
        return false;
#ifdef Q_OS_UNIX
    return fsync(saveFile.handle()) == 0; // QSaveFile ignores the result of its own
#else
    return true;
#endif
}
