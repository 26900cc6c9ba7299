#include "engine/RowText.h"

#include <algorithm>

namespace {

bool endsLine(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char('\r');
}

bool isTab(QChar character)
{
    return character == QLatin1Char('\t');
}

/// Removes leading separators and the part up to the next separator from `text`, and returns the part. Returns an empty
/// part if there is no other character. `separates` tests a character.
template <typename Separates>
QStringView takePart(QStringView &text, Separates separates)
{
    const auto *begin = std::find_if_not(text.begin(), text.end(), separates);
    const auto *end = std::find_if(begin, text.end(), separates);
    text = QStringView(end, text.end());
    return {begin, end};
}

/// Splits `line` into `fields`. Returns false unless there are exactly six.
bool split(QStringView line, RowFields &fields)
{
    for (QStringView &field : fields) {
        field = takePart(line, isTab);
        if (field.isEmpty())
            return false;
    }
    return takePart(line, isTab).isEmpty();
}

} // namespace

QString textOfRows(const QVector<QVector<float>> &rows)
{
    QString text;
    for (int r = 0; r < Pendrix3D::rowCount; ++r) {
        const QVector<float> row = rows.value(r);
        QString line = QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n");
        for (int column = 0; column < Pendrix3D::rowLength; ++column)
            line = line.arg(static_cast<double>(row.value(column)), 0, 'g', -1, QLatin1Char(' '));
        text += line;
    }
    return text;
}

bool takeRow(QStringView &text, RowFields &fields)
{
    while (true) {
        const QStringView line = takePart(text, endsLine);
        if (line.isEmpty())
            return false;
        if (split(line, fields))
            return true;
    }
}

std::optional<float> valueOfField(QStringView field)
{
    bool converted = false;
    const float value = field.toString().toFloat(&converted);
    return converted ? std::optional(value) : std::nullopt;
}
