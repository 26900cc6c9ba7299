#include "app/Clipboard.h"

#include "engine/RowText.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

namespace {

/// Stores each numeric field in the same column of `row`.
void store(const RowFields &fields, QVector<float> &row)
{
    int column = 0;
    for (const QStringView field : fields) {
        const auto value = valueOfField(field);
        if (value && column < row.size())
            row[column] = *value;
        ++column;
    }
}

} // namespace

void copyParamsToClipboard(const Pendrix3D &engine)
{
    QGuiApplication::clipboard()->setText(textOfRows(engine.paramList));
}

void pasteParamsFromClipboard(Pendrix3D &engine)
{
    const QString text = QGuiApplication::clipboard()->text();
    QStringView rest(text);
    RowFields fields;
    const auto rows = std::min<qsizetype>(Pendrix3D::rowCount, engine.paramList.size());
    for (int r = 0; r < rows && takeRow(rest, fields); ++r)
        store(fields, engine.paramList[r]);
}
