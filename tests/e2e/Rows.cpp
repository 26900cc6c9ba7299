#include "tests/e2e/Rows.h"

#include "engine/Pendrix3D.h"

#include <QMatrix4x4>

#include <algorithm>
#include <cstdlib>

namespace {

/// Returns the bounding rectangle of the engine's curve in a view of `size`.
QRect outlineOf(const Pendrix3D &engine, const Rotation &rotation, QSize size)
{
    QMatrix4x4 matrix;
    matrix.viewport(0.0F, 0.0F, static_cast<float>(size.width()), static_cast<float>(size.height()));
    matrix.perspective(45.0F, static_cast<float>(size.width()) / static_cast<float>(size.height()), 1.0F, 15.0F);
    matrix.translate(0.0F, 0.0F, -5.0F);
    matrix.rotate(180.0F - rotation.aboutX, 1.0F, 0.0F, 0.0F);
    matrix.rotate(rotation.aboutY, 0.0F, 1.0F, 0.0F);
    matrix.rotate(rotation.aboutZ, 0.0F, 0.0F, 1.0F);
    QRect outline;
    for (const CurvePoint &point : engine.points) {
        const QPoint pixel = matrix.map(QVector3D(point.x, point.y, point.z)).toPoint();
        outline |= QRect(pixel.x(), size.height() - pixel.y(), 1, 1);
    }
    return outline & QRect(QPoint(0, 0), size);
}

} // namespace

QByteArray textOf(const Rows &rows)
{
    QByteArray text;
    for (const Row &row : rows) {
        QByteArrayList numbers;
        for (const float value : row)
            numbers << QByteArray::number(static_cast<double>(value), 'g', 6);
        text += numbers.join('\t') + '\n';
    }
    return text;
}

QByteArray presetText()
{
    return textOf(Pendrix3D().paramList);
}

QByteArray presetsBelow(const Rows &rows)
{
    return textOf(rows) + presetText().split('\n').mid(rows.size()).join('\n');
}

Rows distinctRows()
{
    return {cone(0.002F),  cone(-0.002F),  cone(0.004F), cone(-0.004F),
            cone(0.0094F), cone(-0.0094F), cone(0.0F),   cone(1.0F)};
}

int shownBy(RunningProgram &program)
{
    const QImage view = program.view();
    QVector<int> shown;
    for (int i = 0; i < distinctRows().size(); ++i) {
        if (shows(view, distinctRows().at(i)))
            shown << i;
    }
    return shown.size() == 1 ? shown.first() : -1;
}

bool shows(const QImage &view, const Row &row, const Rotation &rotation, int frames)
{
    constexpr int tolerance = 5; // pixels: line ends, and the animation between the examined frames
    constexpr int stride = 20;   // frames
    static Pendrix3D engine;
    const QRect shown = curveIn(view);
    engine.set(row);
    for (int frame = 0; frame <= frames && !shown.isEmpty(); frame += stride) {
        const QRect outline = outlineOf(engine, rotation, view.size());
        if (std::abs(outline.left() - shown.left()) <= tolerance &&
            std::abs(outline.top() - shown.top()) <= tolerance &&
            std::abs(outline.right() - shown.right()) <= tolerance &&
            std::abs(outline.bottom() - shown.bottom()) <= tolerance)
            return true;
        engine.next(0.0004 * stride, 0.0004 * stride);
    }
    return false;
}

bool isBlue(const QImage &view)
{
    for (int y = 0; y < view.height(); ++y) {
        for (int x = 0; x < view.width(); ++x) {
            if ((view.pixel(x, y) & 0xFFFF00U) != 0)
                return false;
        }
    }
    return !curveIn(view).isEmpty();
}
