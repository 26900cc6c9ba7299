// Pastes arbitrary bytes as the clipboard's text.

#include "app/Clipboard.h"
#include "engine/Pendrix3D.h"
#include "tests/fuzz/FuzzApplication.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

using Rows = QVector<QVector<float>>;

/// Returns `rows` after a paste of `text`. A plain reference implementation.
Rows pasted(QString text, Rows rows)
{
    int next = 0;
    QStringList lines = text.replace('\r', '\n').split('\n');
    lines.removeAll(QString());
    for (const QString &line : std::as_const(lines)) {
        QStringList fields = line.split('\t');
        fields.removeAll(QString());
        if (fields.size() != Pendrix3D::rowLength)
            continue;
        if (next == rows.size())
            break;
        for (int column = 0; column < Pendrix3D::rowLength; ++column) {
            bool isNumber = false;
            const float number = fields.at(column).toFloat(&isNumber);
            if (isNumber)
                rows[next][column] = number;
        }
        ++next;
    }
    return rows;
}

/// Returns 64 rows of different values.
Rows numberedRows()
{
    Rows rows;
    for (int r = 0; r < Pendrix3D::rowCount; ++r) {
        QVector<float> row;
        for (int column = 0; column < Pendrix3D::rowLength; ++column)
            row << static_cast<float>(r * 10 + column);
        rows << row;
    }
    return rows;
}

QString copied()
{
    copyParamsToClipboard(pdx3);
    return QGuiApplication::clipboard()->text();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    startFuzzApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Rows before = numberedRows();
    static const Rows presets = pdx3.presets;

    // As bytes, as other programs provide them.
    auto *text = new QMimeData;
    text->setData(QStringLiteral("text/plain"),
                  QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    QGuiApplication::clipboard()->setMimeData(text);

    pdx3.paramList = before;
    pasteParamsFromClipboard(pdx3);
    expect(haveSameBits(pdx3.paramList, pasted(QGuiApplication::clipboard()->text(), before)),
           "Lines of six fields are the rows, and the others stay");
    expect(haveSameBits(pdx3.presets, presets), "The presets stay");

    // A copy has six digits, so the first one may differ from the pasted text. Later ones do not.
    const QString copy = copied();
    expect(copy.count('\n') == Pendrix3D::rowCount, "A copy has 64 lines");
    pdx3.paramList = before;
    pasteParamsFromClipboard(pdx3);
    const Rows rows = pdx3.paramList;
    expect(copied() == copy, "A copy that is pasted copies as it was");
    pasteParamsFromClipboard(pdx3);
    expect(haveSameBits(pdx3.paramList, rows), "A copy that is pasted twice is pasted as once");
    return 0;
}
