#include "app/SettingsFormat.h"

#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QVector>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

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

/// Reads past a streamed vector and returns whether all its elements exist: elements of 4 bytes at depth 1, vectors of
/// such elements at depth 2. QDataStream would allocate memory for a damaged count.
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
QVariant decoded(const QString &key, const QByteArray &text)
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
QByteArray encoded(const QString &key, const QVariant &value)
{
    QByteArray bytes = value.toByteArray();
    const bool isVariant = value.userType() != QMetaType::QByteArray;
    if (isVariant) {
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_4_0);
        stream << value;
    }
    return key.toLatin1() + '=' + escaped((isVariant ? "@Variant(" : "@ByteArray(") + bytes + ')');
}

/// The position of one of our entries in the text of a settings file. An empty key marks the end of a [General] line.
struct Entry
{
    QString key;
    int start;
    int end;
};

/// Returns our entries in `text`. As in QSettings, those before the first section belong to [General].
QVector<Entry> entriesIn(const QByteArray &text)
{
    // An entry ends with its line. QSettings continues an entry after a quoted or escaped line end. It never writes
    // one, but with that rule, a damaged quote or backslash would hide the entries of other lines.
    //
    // All quantifiers are possessive, so that matching never backtracks into a repetition, however damaged the file is.
    // The text is Latin-1: one character per byte.
    //
    // The rest of an entry or section line: up to an unquoted semicolon or, if a quote is never closed, to the line
    // end.
    static const QString rest =
        QStringLiteral(R"((?:(?:[^\r\n;"\\]++|\\[^\r\n]|"(?:[^\r\n"\\]++|\\[^\r\n])*+")*+(?!["\\])|[^\r\n]*+))");
    static const QString key = QStringLiteral("(colsWidth|geometry|paramList|windowState)[ \\t]*+=");
    // The tokens: byte order mark, comment, section (capture 1), our entry (capture 2), run of foreign entries.
    static const QRegularExpression token(
        QStringLiteral(R"(^\xEF\xBB\xBF|;[^\r\n]*+|\[([^]\r\n]*+)%1|%2%1|(?:(?!;|\[|%2)\S%1\s*+)++)").arg(rest, key));
    QVector<Entry> entries;
    bool isGeneral = true;
    for (auto matches = token.globalMatch(QString::fromLatin1(text)); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const bool isSection = match.capturedStart(1) >= 0;
        if (isSection)
            isGeneral = match.captured(1).trimmed().compare(QLatin1String("general"), Qt::CaseInsensitive) == 0;
        if (isGeneral && isSection)
            entries.append({QString(), match.capturedEnd(), match.capturedEnd()});
        else if (isGeneral && match.capturedStart(2) >= 0)
            entries.append({match.captured(2), match.capturedStart(), match.capturedEnd()});
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

    const auto isSection = [](const Entry &entry) { return entry.key.isEmpty(); };
    QVector<Entry> entries = entriesIn(text);
    if (std::none_of(entries.cbegin(), entries.cend(), isSection)) {
        text.insert(text.startsWith("\xEF\xBB\xBF") ? 3 : 0, "[General]\n");
        entries = entriesIn(text);
    }
    QSettings::SettingsMap remaining = values;
    QByteArray result;
    int copied = 0;
    int sectionEnd = 0;
    for (const Entry &entry : qAsConst(entries)) {
        result += text.mid(copied, entry.start - copied);
        copied = entry.end;
        if (isSection(entry))
            sectionEnd = result.size();
        else if (remaining.contains(entry.key)) // drops entries without a value and second entries of a key
            result += encoded(entry.key, remaining.take(entry.key));
    }
    result += text.mid(copied);
    QByteArray added;
    for (const char *key :
         {SettingsKey::colsWidth, SettingsKey::geometry, SettingsKey::paramList, SettingsKey::windowState}) {
        if (remaining.contains(key))
            added += '\n' + encoded(key, remaining.take(key));
    }
    result.insert(sectionEnd, added);

    if (saveFile.write(result) != result.size() || !saveFile.flush())
        return false;
#ifdef Q_OS_UNIX
    return fsync(saveFile.handle()) == 0; // QSaveFile calls fsync, too, but ignores errors
#else
    return true;
#endif
}
