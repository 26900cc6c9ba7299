#include "app/SettingsFile.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaType>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QTemporaryFile>
#include <QVector>

#include <algorithm>
#include <array>

namespace {

/// Whether the toolkit keeps settings in a file of text. On Windows they are in the registry, on macOS in a list of the
/// system's own; neither is ours to read or to mend.
#if defined(Q_OS_WIN) || defined(Q_OS_DARWIN)
constexpr bool storeIsText = false;
#else
constexpr bool storeIsText = true;
#endif

/// What the settings format's escapes stand for: a backslash and one of these letters.
struct Escape
{
    char letter;
    char character;
};
constexpr std::array<Escape, 11> escapes = {{{'a', '\a'},
                                             {'b', '\b'},
                                             {'f', '\f'},
                                             {'n', '\n'},
                                             {'r', '\r'},
                                             {'t', '\t'},
                                             {'v', '\v'},
                                             {'"', '"'},
                                             {'?', '?'},
                                             {'\'', '\''},
                                             {'\\', '\\'}}};

int digitOf(char character, int base)
{
    const int digit = character >= '0' && character <= '9'   ? character - '0'
                      : character >= 'a' && character <= 'f' ? character - 'a' + 10
                      : character >= 'A' && character <= 'F' ? character - 'A' + 10
                                                             : base;
    return digit < base ? digit : -1;
}

/// The character of the escape that starts at the backslash at `at` of `text`, and moves `at` to what follows. Numbers
/// may have any count of digits, of which the lowest 16 bits are kept. -1 for an escape that stands for nothing.
int takeEscape(const QByteArray &text, int &at)
{
    if (++at == text.size())
        return -1;
    const char letter = text.at(at++);
    const bool octal = digitOf(letter, 8) >= 0;
    if (octal || letter == 'x') {
        const int base = octal ? 8 : 16;
        int value = octal ? digitOf(letter, 8) : -1;
        for (; at < text.size() && digitOf(text.at(at), base) >= 0; ++at)
            value = (std::max(value, 0) * base + digitOf(text.at(at), base)) & 0xFFFF;
        return value;
    }
    const bool endsLine = letter == '\n' || letter == '\r';
    if (endsLine && at < text.size() && (text.at(at) == '\n' || text.at(at) == '\r') && text.at(at) != letter)
        ++at; // both characters of another system's line end
    for (const Escape &escape : escapes) {
        if (escape.letter == letter)
            return static_cast<uchar>(escape.character);
    }
    return -1;
}

/// What is left of `text` for the toolkit to recognise a value by, however it is spelled: escapes replaced, and of the
/// rest the letters, the bracket, and what separates values. Blanks, quotation marks and marks of the encoding, which
/// the toolkit passes over in places, are gone.
QByteArray skeletonOf(const QByteArray &text)
{
    QByteArray result;
    for (int at = 0; at < text.size();) {
        const bool isEscape = text.at(at) == '\\';
        const int character = isEscape ? takeEscape(text, at) : static_cast<uchar>(text.at(at++));
        const bool isLetter = (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
        const bool separates = !isEscape && (character == ',' || character == '=' || character == '\n');
        if (isLetter || character == '@' || character == '(' || separates)
            result.append(static_cast<char>(character));
    }
    return result;
}

/// The first bytes of the value at `at` of `text`, up to `count`; fewer if the value ends or is not spelled as the
/// toolkit spells it.
QByteArray firstBytes(const QByteArray &text, int at, int count)
{
    QByteArray bytes;
    while (at < text.size() && bytes.size() < count) {
        int character = static_cast<uchar>(text.at(at));
        if (character == '"' || character == '\n' || character == '\r' || character > 0x7F)
            break;
        if (character == '\\')
            character = takeEscape(text, at);
        else
            ++at;
        if (character < 0 || character > 0xFF)
            break;
        bytes.append(static_cast<char>(character));
    }
    return bytes;
}

/// How a value in binary form starts, and whether a date and time in this form may have a zone.
struct Form
{
    const char *start;
    bool hasZones;
};
constexpr std::array<Form, 2> forms = {{{"@Variant(", false}, {"@DateTime(", true}}};

/// Whether the date and time that follows in `stream` is there and has no zone. A zone is a name, and the toolkit ends
/// the program when it saves one that it does not know.
bool hasNoZone(QDataStream &stream)
{
    stream.skipRawData(1 + 8 + 4); // whether there is a value, the date, the time
    qint8 kind = 0;
    stream >> kind;
    return stream.status() == QDataStream::Ok && kind >= Qt::LocalTime && kind <= Qt::OffsetFromUTC;
}

/// Whether restoring the value of this form whose bytes start at `at` of `text`, and saving it again, is harmless.
bool isHarmlessValue(const QByteArray &text, int at, const Form &form)
{
    const QByteArray bytes = firstBytes(text, at, 64); // enough for the type and its name
    QDataStream stream(bytes);
    quint32 type = 0;
    stream >> type;
    if (stream.status() != QDataStream::Ok)
        return false;
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QChar:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QUrl:
    case QMetaType::QLocale:
    case QMetaType::QRect:
    case QMetaType::QRectF:
    case QMetaType::QSize:
    case QMetaType::QSizeF:
    case QMetaType::QLine:
    case QMetaType::QLineF:
    case QMetaType::QPoint:
    case QMetaType::QPointF:
    case QMetaType::QColor:
        return true;
    case QMetaType::QDateTime:
        return !form.hasZones || hasNoZone(stream);
    case 127: // a type that goes by its name
        break;
    default:
        // The other numbers, whose types the settings' version of the stream counts from 97 on.
        return type >= QMetaType::Long + 97U && type <= QMetaType::Float + 97U;
    }
    quint32 length = 0;
    stream >> length;
    QByteArray name(static_cast<int>(std::min(length, 40U)), '\0');
    if (length > 40 || stream.readRawData(name.data(), name.size()) != name.size())
        return false;
    const int named = QMetaType::type(name.constData());
    // A name that nobody knows is not restored at all.
    return named == QMetaType::UnknownType || named == qMetaTypeId<QVector<int>>() ||
           named == qMetaTypeId<QVector<QVector<float>>>();
}

/// Whether every value in binary form in `text` is harmless.
bool isHarmless(const QByteArray &text)
{
    const QByteArray skeleton = skeletonOf(text);
    for (const Form &form : forms) {
        const QByteArray start(form.start);
        int values = 0;
        for (int at = skeleton.indexOf(start); at >= 0; at = skeleton.indexOf(start, at + 1)) {
            if (at == 0 || skeleton.at(at - 1) != '@') // two of them are a text that begins with one
                ++values;
        }
        // As many must be there in plain sight, and harmless.
        for (int at = text.indexOf(start); at >= 0; at = text.indexOf(start, at + 1)) {
            if (at > 0 && text.at(at - 1) == '@')
                continue;
            if (!isHarmlessValue(text, at + start.size(), form))
                return false;
            --values;
        }
        if (values != 0)
            return false;
    }
    return true;
}

/// Writes `content` to the file at `path`, whole or not at all.
bool write(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // Without the flush, the last bytes would be written when it is too late to learn that they could not.
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush() && file.commit();
}

} // namespace

QByteArray harmlessPartOf(const QByteArray &file)
{
    if (isHarmless(file))
        return file;
    QByteArray part;
    const QList<QByteArray> lines = file.split('\n');
    for (const QByteArray &line : lines) {
        if (isHarmless(line))
            part += line + '\n';
    }
    return isHarmless(part) ? part : QByteArray(); // nothing if a value stands over several lines
}

bool mendSettingsFile(const QString &path)
{
    if (!storeIsText)
        return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray content = file.readAll();
    const QByteArray harmless = harmlessPartOf(content);
    return harmless == content || (write(path + QStringLiteral(".damaged"), content) && write(path, harmless));
}

bool hasRoomBeside(const QString &path, qint64 bytes)
{
    if (!storeIsText)
        return true;
    QDir().mkpath(QFileInfo(path).path());
    QTemporaryFile file(path + QStringLiteral(".XXXXXX"));
    // Not zeros, which some file systems keep without room for them.
    QByteArray noise(static_cast<int>(bytes), '\0');
    for (char &byte : noise)
        byte = static_cast<char>(QRandomGenerator::global()->generate());
    return file.open() && file.write(noise) == noise.size() && file.flush();
}
