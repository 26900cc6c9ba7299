#include "app/Clipboard.h"

#include "engine/Pendrix3D.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QStringView>

#include <algorithm>
#include <array>

namespace {

using Fields = std::array<QStringView, Pendrix3D::rowLength>;

bool endsLine(QChar character)
{
    return character == QLatin1Char('\n') || character == QLatin1Char('\r');
}

bool isTab(QChar character)
{
    return character == QLatin1Char('\t');
}

/// Takes the first part off `text`: what stands before the first character that `separates`. Empty parts are skipped;
/// the result is empty when there is no other.
///
/// The clipboard may hold 100 MB: parts are views, and no list of them is built.
template <typename Separates>
QStringView takePart(QStringView &text, Separates separates)
{
    const auto *begin = std::find_if_not(text.begin(), text.end(), separates);
    const auto *end = std::find_if(begin, text.end(), separates);
    text = QStringView(end, text.end());
    return {begin, end};
}

/// Splits `line` into its fields. False unless there are exactly six.
bool split(QStringView line, Fields &fields)
{
    for (QStringView &field : fields) {
        field = takePart(line, isTab);
        if (field.isEmpty())
            return false;
    }
    return takePart(line, isTab).isEmpty();
}

/// Stores the fields that are numbers in `row`.
void store(const Fields &fields, QVector<float> &row)
{
    int column = 0;
    for (const QStringView field : fields) {
        bool converted = false;
        const float value = field.toString().toFloat(&converted);
        if (converted && column < row.size())
            row[column] = value;
        ++column;
    }
}

} // namespace

void copyParamsToClipboard(const Pendrix3D &engine)
{
    QString text;
    for (int r = 0; r < Pendrix3D::rowCount; ++r) {
        const QVector<float> row = engine.paramList.value(r);
        QString line = QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n");
        for (int column = 0; column < Pendrix3D::rowLength; ++column)
            line = line.arg(static_cast<double>(row.value(column)), 0, 'g', -1, QLatin1Char(' '));
        text += line;
    }
    QGuiApplication::clipboard()->setText(text);
}

void pasteParamsFromClipboard(Pendrix3D &engine)
{
    const QString text = QGuiApplication::clipboard()->text();
    QStringView rest(text);
    const int rows = std::min(Pendrix3D::rowCount, engine.paramList.size());
    for (int r = 0; r < rows;) {
        const QStringView line = takePart(rest, endsLine);
        if (line.isEmpty())
            return;
        Fields fields;
        if (!split(line, fields))
            continue;
        store(fields, engine.paramList[r]);
        ++r;
    }
}
