#pragma once

#include "tests/e2e/CurveOnScreen.h"
#include "tests/e2e/RunningProgram.h"

#include <QByteArray>
#include <QVector>

// Rows of the table that can be told from one another on the screen, and rows as text.

using Row = QVector<float>;
using Rows = QVector<Row>;

/// The rows as the clipboard has them.
inline QByteArray textOf(const Rows &rows)
{
    QByteArray text;
    for (const Row &row : rows) {
        QByteArray line;
        for (const float value : row)
            line += QByteArray::number(static_cast<double>(value), 'g', 6) + '\t';
        line.chop(1);
        text += line + '\n';
    }
    return text;
}

/// The table of the first start.
inline QByteArray presetText()
{
    return QByteArray("1\t2\t3\t0.46\t1.5e-08\t1\n"
                      "2\t3\t4\t0.25\t0\t2\n"
                      "1\t3\t1\t0.25\t1.5e-08\t4\n"
                      "2\t1\t3\t0.37\t0\t2\n"
                      "2\t2\t11\t0.25\t1.5e-08\t2\n"
                      "1\t1\t1.01\t0.25\t0.29\t0\n"
                      "4\t4\t22\t0.25\t0\t4\n"
                      "1\t1\t4\t0.43\t1.5e-08\t3\n"
                      "1\t2\t0\t0.1\t0.3\t2\n"
                      "6\t3\t2\t0.21\t0.3\t0\n"
                      "1\t2\t-1\t0.1\t0.3\t2\n"
                      "6\t-3\t2\t0.21\t0.3\t0\n") +
           QByteArray("0\t0\t0\t0\t0\t0\n").repeated(52);
}

/// Blue cones about the x axis, wound so tightly that the animation does not change their outline. How far and to which
/// side they reach is told by freq2 alone.
inline Row cone(float freq2)
{
    return {20.0F, freq2, 20.0F, 0.25F, 0.0F, 5.0F};
}

/// Rows with eight curves that no one would take for another: the first ones of the table, the rest is as it was.
inline Rows distinctRows()
{
    return {cone(0.002F),  cone(-0.002F),  cone(0.004F), cone(-0.004F),
            cone(0.0094F), cone(-0.0094F), cone(0.0F),   cone(1.0F)};
}

/// Which of the rows the program shows, counted from 0; -1 if it is none of them, or not clear which.
inline int shownBy(const RunningProgram &program, const Rows &rows = distinctRows())
{
    const QImage picture = program.picture();
    int shown = -1;
    for (int i = 0; i < rows.size(); ++i) {
        if (!shows(picture, rows.at(i)))
            continue;
        if (shown >= 0)
            return -1;
        shown = i;
    }
    return shown;
}

/// The rows of `text`, with those of `rows` at the top.
inline QByteArray withTop(const QByteArray &text, const Rows &rows)
{
    const QList<QByteArray> lines = text.split('\n');
    return textOf(rows) + lines.mid(rows.size()).join('\n');
}
