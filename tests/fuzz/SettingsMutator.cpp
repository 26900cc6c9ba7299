// Mutates a settings file: the unescaped bytes of one value, a run of one byte or line, or any bytes.

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t maxSize);

namespace {

struct Key
{
    const char *name;
    const char *form;
};

constexpr Key keys[] = {{"windowState", "@ByteArray("},
                        {"geometry", "@ByteArray("},
                        {"colsWidth", "@Variant("},
                        {"paramList", "@Variant("}};

bool isHexDigit(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

/// Returns `bytes` with the escapes of the settings format.
QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    bool afterNumber = false; // a hexadecimal digit would continue the escape
    for (const char byte : bytes) {
        const bool isPlain = isLetter(byte) && !(afterNumber && isHexDigit(byte));
        if (isPlain)
            text += byte;
        else if (byte == '\0')
            text += "\\0";
        else
            text += "\\x" + QByteArray::number(static_cast<uchar>(byte), 16);
        afterNumber = !isPlain;
    }
    return text;
}

/// Returns the bytes of an escaped value, for the escapes that the program writes.
QByteArray unescaped(const QByteArray &text)
{
    constexpr char letters[] = "abfnrtv0";
    constexpr char characters[] = "\a\b\f\n\r\t\v";
    QByteArray bytes;
    for (int at = 0; at < text.size();) {
        const char character = text.at(at++);
        if (character != '\\' || at == text.size()) {
            bytes += character;
            continue;
        }
        const char letter = text.at(at++);
        if (letter == 'x') {
            int end = at;
            while (end < text.size() && isHexDigit(text.at(end)))
                ++end;
            bytes += static_cast<char>(text.mid(at, end - at).toUInt(nullptr, 16));
            at = end;
        } else {
            const char *found = letter == '\0' ? nullptr : std::strchr(letters, letter);
            bytes += found ? characters[found - letters] : letter;
        }
    }
    return bytes;
}

/// Returns `bytes` after a mutation by libFuzzer.
QByteArray mutated(QByteArray bytes)
{
    const int size = static_cast<int>(bytes.size());
    const int most = size + std::max(size / 4, 64);
    bytes.resize(most);
    bytes.resize(static_cast<int>(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t *>(bytes.data()),
                                                   static_cast<std::size_t>(size), static_cast<std::size_t>(most))));
    return bytes;
}

/// Returns the settings file with a mutated value of `key`.
QByteArray withMutatedValue(QByteArray file, const Key &key)
{
    const QByteArray start = QByteArray("\n") + key.name + '=';
    auto at = file.indexOf(start);
    if (at < 0) {
        const QByteArray section("[General]");
        if (!file.contains(section))
            file.prepend(section + '\n');
        at = file.indexOf(section) + section.size();
        file.insert(at, start + key.form + ')');
    }
    const auto valueAt = at + start.size();
    const auto lineEnd = file.indexOf('\n', valueAt);
    const auto length = (lineEnd < 0 ? file.size() : lineEnd) - valueAt;
    QByteArray value = file.mid(valueAt, length);
    if (value.startsWith('"'))
        value = value.mid(1, value.size() - 2);
    value = value.mid(value.indexOf('(') + 1);
    if (value.endsWith(')'))
        value.chop(1);

    return file.replace(valueAt, length, key.form + escaped(mutated(unescaped(value))) + ')');
}

/// Returns the settings file with a run of up to 5000 equal bytes or short lines inserted.
QByteArray withRun(QByteArray file, std::minstd_rand &random)
{
    const QByteArray units[] = {
        QByteArray(1, '\0'), "\"",          "\\",    "=", "[", ";", " ", "\n", "\r", "a=\n", "k1=1\n",
        "[General]\n",       "geometry=\n", "a=\"\n"};
    const QByteArray &unit = units[random() % std::size(units)];
    const auto longest = random() % 2 == 0 ? 4U : 5000U;
    const auto at = random() % (static_cast<uint>(file.size()) + 1);
    return file.insert(static_cast<int>(at), unit.repeated(static_cast<int>(1 + random() % longest)));
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    std::minstd_rand random(seed);
    const auto choice = random() % 8;
    if (choice < 4) {
        const QByteArray file(reinterpret_cast<const char *>(data), static_cast<int>(size));
        const QByteArray result =
            choice == 0 ? withRun(file, random) : withMutatedValue(file, keys[random() % std::size(keys)]);
        if (static_cast<std::size_t>(result.size()) <= maxSize) {
            std::copy(result.cbegin(), result.cend(), data);
            return static_cast<std::size_t>(result.size());
        }
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}
