#include "app/SettingsFormat.h"

#include <QDataStream>
#include <QFile>
#include <QVector>

#include <algorithm>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

constexpr QLatin1String keys[] = {SettingsKey::colsWidth, SettingsKey::geometry, SettingsKey::paramList,
                                  SettingsKey::windowState};

bool endsLine(char character)
{
    return character == '\n' || character == '\r';
}

bool isDigit(char character, bool isHex)
{
    return character != '\0' && std::strchr(isHex ? "0123456789abcdefABCDEF" : "01234567", character);
}

/// Decodes the quotes and escapes of a value. Returns false for lists and for escapes that QSettings does not write.
bool unescape(const QByteArray &text, QByteArray &bytes)
{
    constexpr char letters[] = "abtnvfr\"\\";
    bool isQuoted = false;
    for (int at = 0; at < text.size(); ++at) {
        if (text.at(at) == '"') {
            isQuoted = !isQuoted;
        } else if (text.at(at) == ',' && !isQuoted) {
            return false;
        } else if (text.at(at) != '\\') {
            bytes += text.at(at);
        } else if (++at < text.size() && text.at(at) != '\0' && std::strchr(letters, text.at(at))) {
            bytes += "\a\b\t\n\v\f\r\"\\"[std::strchr(letters, text.at(at)) - letters];
        } else {
            const bool isHex = text.mid(at, 1) == "x";
            const int start = isHex ? at + 1 : at;
            for (at = start; at < text.size() && isDigit(text.at(at), isHex);)
                ++at;
            bool isNumber = false;
            const uint code = text.mid(start, at - start).toUInt(&isNumber, isHex ? 16 : 8);
            if (!isNumber || code > 0xFF)
                return false;
            --at;
            bytes += static_cast<char>(code);
        }
    }
    return true;
}

/// Returns `bytes` with the quotes and escapes that QSettings writes.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    bool isAfterNumber = false; // which a digit would continue
    for (const char byte : bytes) {
        const bool isLetter = byte >= '\a' && byte <= '\r';
        const bool isPlain = byte >= ' ' && byte <= '~' && !(isAfterNumber && isDigit(byte, true));
        isAfterNumber = !isLetter && !isPlain;
        if (isLetter)
            text += QByteArray("\\") + "abtnvfr"[byte - '\a'];
        else if (isAfterNumber)
            text += byte == '\0' ? "\\0" : "\\x" + QByteArray::number(static_cast<uchar>(byte), 16);
        else
            text += byte == '"' || byte == '\\' ? QByteArray("\\") + byte : QByteArray(1, byte);
    }
    const bool needsQuotes = bytes.contains(';') || bytes.contains(',') || bytes.contains('=');
    return needsQuotes ? '"' + text + '"' : text;
}

template <typename T>
void readValue(QDataStream &stream, T &value)
{
    stream >> value;
}

template <typename T>
void readValue(QDataStream &stream, QVector<T> &vector)
{
    quint32 count = 0;
    stream >> count;
    if (count > stream.device()->bytesAvailable() / 4) // an element has at least four bytes
        return stream.setStatus(QDataStream::ReadCorruptData);
    vector.resize(static_cast<int>(count));
    for (T &element : vector)
        readValue(stream, element);
}

/// Returns the container in `stream`, or an invalid variant unless it ends where the stream does.
template <typename Container>
QVariant container(QDataStream &stream)
{
    Container value;
    readValue(stream, value);
    return stream.status() == QDataStream::Ok && stream.atEnd() ? QVariant::fromValue(value) : QVariant();
}

/// Returns the value of `key` whose text is `text`, or an invalid variant if it is malformed or of another type.
QVariant decoded(QLatin1String key, const QByteArray &text)
{
    const bool isVariant = key == SettingsKey::colsWidth || key == SettingsKey::paramList;
    const QByteArray form = isVariant ? "@Variant(" : "@ByteArray(";
    QByteArray bytes;
    if (!unescape(text.trimmed(), bytes) || !bytes.startsWith(form) || !bytes.endsWith(')'))
        return {};
    bytes = bytes.mid(form.size(), bytes.size() - form.size() - 1);
    if (!isVariant)
        return bytes;

    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 type = 0;
    QByteArray name; // with its final zero byte
    stream >> type >> name;
    if (type == 127 && key == SettingsKey::colsWidth && name == QByteArray("QVector<int>", 13))
        return container<QVector<int>>(stream);
    name.replace("> >", ">>"); // Qt 5 writes the blank
    if (type == 127 && key == SettingsKey::paramList && name == QByteArray("QVector<QVector<float>>", 24))
        return container<QVector<QVector<float>>>(stream);
    return {};
}

/// Returns the entry of `key` as QSettings writes it.
QByteArray encoded(QLatin1String key, const QVariant &value)
{
    QByteArray bytes = "@ByteArray(" + value.toByteArray();
    if (value.userType() != QMetaType::QByteArray) {
        bytes.clear();
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_4_0);
        stream << value;
        bytes.prepend("@Variant(");
    }
    return key.data() + ('=' + escaped(bytes + ')'));
}

/// Returns where the text starts after a byte order mark.
int startOf(const QByteArray &text)
{
    return text.startsWith("\xEF\xBB\xBF") ? 3 : 0;
}

/// Returns the end of the entry at `start`: the next unquoted line end or semicolon; the next line end if a quote never
/// closes.
int endOfEntry(const QByteArray &text, int start)
{
    bool isQuoted = false;
    const bool isComment = text.at(start) == ';';
    int lineEnd = text.size();
    for (int at = start + 1; at < text.size(); ++at) {
        const char character = text.at(at);
        if (!isQuoted && (endsLine(character) || (character == ';' && !isComment)))
            return at;
        if (endsLine(character))
            lineEnd = std::min(lineEnd, at);
        else if (character == '\\' && !isComment)
            ++at;
        else if (character == '"' && !isComment)
            isQuoted = !isQuoted;
    }
    return isQuoted ? lineEnd : text.size();
}

/// The place of one of our entries in the text of a settings file, or, without a key, the place for new ones.
struct Entry
{
    QLatin1String key;
    int start;
    int valueStart;
    int end;
};

/// Returns our entries in `text`, and the end of the first [General] line as the place for new ones. Entries before the
/// first section belong to [General].
QVector<Entry> entriesIn(const QByteArray &text)
{
    QVector<Entry> entries;
    bool isGeneral = true;
    bool hasPlace = false;
    for (int at = startOf(text), end = at; at < text.size(); at = end) {
        end = endsLine(text.at(at)) || text.at(at) == ' ' || text.at(at) == '\t' ? at + 1 : endOfEntry(text, at);
        const QByteArray entry = QByteArray::fromRawData(text.constData() + at, end - at);
        const int equals = entry.indexOf('=');
        if (entry.startsWith('[')) {
            isGeneral = entry.mid(1, entry.indexOf(']') - 1).trimmed().toLower() == "general";
            if (isGeneral && !hasPlace)
                entries.append({QLatin1String(), end, end, end});
            hasPlace = hasPlace || isGeneral;
        } else if (isGeneral && equals >= 0) {
            const auto *key = std::find(std::begin(keys), std::end(keys), QLatin1String(entry.left(equals).trimmed()));
            if (key != std::end(keys))
                entries.append({*key, at, at + equals + 1, end});
        }
    }
    return entries;
}

bool readWhole(QFileDevice &file, QByteArray &content)
{
    content = file.readAll();
    return file.error() == QFileDevice::NoError && content.size() == file.size();
}

} // namespace

bool SettingsFormat::read(QIODevice &device, QSettings::SettingsMap &values)
{
    QByteArray text;
    if (!readWhole(static_cast<QFileDevice &>(device), text))
        return false;
    const QVector<Entry> entries = entriesIn(text);
    for (const Entry &entry : entries) {
        const QVariant value = decoded(entry.key, text.mid(entry.valueStart, entry.end - entry.valueStart));
        if (value.isValid())
            values.insert(entry.key, value); // the last of several, as QSettings does
    }
    return true;
}

bool SettingsFormat::write(QIODevice &device, const QSettings::SettingsMap &values)
{
    auto &file = static_cast<QFileDevice &>(device);
    QByteArray text;
    QFile present(file.fileName());
    // QSettings holds the lock, and renames the new file over the present one afterwards.
    if (present.open(QIODevice::ReadOnly) ? !readWhole(present, text) : present.exists())
        return false;

    QSettings::SettingsMap left = values;
    const auto take = [&left](QLatin1String key) {
        const QVariant value = left.take(key);
        return value.isValid() ? encoded(key, value) : QByteArray();
    };
    QByteArray result;
    int copied = 0;
    int place = -1;
    const QVector<Entry> entries = entriesIn(text);
    for (const Entry &entry : entries) {
        result += text.mid(copied, entry.start - copied);
        copied = entry.end;
        if (entry.key.isNull())
            place = result.size();
        else
            result += take(entry.key); // nothing for a second entry of the same key
    }
    result += text.mid(copied);

    QByteArray added;
    for (const QLatin1String key : keys) {
        if (left.contains(key))
            added += '\n' + take(key);
    }
    if (place < 0 && !added.isEmpty())
        result.insert(startOf(text), "[General]" + added + '\n');
    else if (!added.isEmpty())
        result.insert(place, place < result.size() ? added : added + '\n');

    if (file.write(result) != result.size() || !file.flush())
        return false;
#ifdef Q_OS_UNIX
    return fsync(file.handle()) == 0; // QSaveFile ignores the result of its own
#else
    return true;
#endif
}
