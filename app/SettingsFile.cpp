#include "app/SettingsFile.h"

#include <QDataStream>
#include <QFile>
#include <QMetaType>
#include <QSaveFile>

#include <array>

namespace {

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

/// `text` with its escapes replaced and its quotation marks taken out, as the toolkit reads a value: a number may have
/// any number of digits, of which the lowest 16 bits count, and an unknown escape vanishes.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const char character = text.at(i);
        if (character == '"')
            continue;
        if (character != '\\') {
            result.append(character);
            continue;
        }
        if (++i == text.size())
            break;
        const char letter = text.at(i);
        const bool octal = digitOf(letter, 8) >= 0;
        if (letter == 'x' || octal) {
            quint16 value = 0;
            const int base = octal ? 8 : 16;
            for (i += octal ? 0 : 1; i < text.size() && digitOf(text.at(i), base) >= 0; ++i)
                value = static_cast<quint16>(value * base + digitOf(text.at(i), base));
            --i;
            result.append(value < 256 ? static_cast<char>(value) : '?');
            continue;
        }
        for (const Escape &escape : escapes) {
            if (escape.letter == letter)
                result.append(escape.character);
        }
    }
    return result;
}

/// Whether restoring the value that starts at `offset` of `bytes` is harmless.
bool isHarmlessValue(const QByteArray &bytes, int offset)
{
    QDataStream stream(bytes.mid(offset, 64)); // enough for the type and its name
    quint32 type = 0;
    stream >> type;
    switch (type) {
    case QMetaType::UnknownType:
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
    case QMetaType::QDateTime:
    case QMetaType::QUrl:
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
    case 127: // a type that goes by its name
        break;
    default:
        return false;
    }
    quint32 length = 0;
    stream >> length;
    if (length > 40)
        return false;
    QByteArray name(static_cast<int>(length), '\0');
    stream.readRawData(name.data(), name.size());
    const int named = QMetaType::type(name.constData());
    // A name that nobody knows is not restored at all.
    return named == QMetaType::UnknownType || named == qMetaTypeId<QVector<int>>() ||
           named == qMetaTypeId<QVector<QVector<float>>>();
}

} // namespace

bool isHarmlessSettingsFile(const QByteArray &file)
{
    const QByteArray text = unescaped(file);
    for (const char *start : {"@Variant(", "@DateTime("}) {
        const int length = static_cast<int>(qstrlen(start));
        for (int at = text.indexOf(start); at >= 0; at = text.indexOf(start, at + length)) {
            if (!isHarmlessValue(text, at + length))
                return false;
        }
    }
    return true;
}

bool mendSettingsFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true; // the toolkit cannot read it either
    const QByteArray content = file.readAll();
    if (isHarmlessSettingsFile(content))
        return true;

    QByteArray harmless;
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray &line : lines) {
        if (isHarmlessSettingsFile(line))
            harmless += line + '\n';
    }
    if (!isHarmlessSettingsFile(harmless)) // a value over several lines
        harmless.clear();

    const QString kept = path + QStringLiteral(".damaged");
    QFile::remove(kept);
    QSaveFile mended(path);
    return file.copy(kept) && mended.open(QIODevice::WriteOnly) && mended.write(harmless) == harmless.size() &&
           mended.commit();
}
