#include "export/Writers.h"

#include "export/LineImage.h"
#include "export/Projection.h"

#include <QBuffer>
#include <QImageWriter>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>

#include <cmath>

namespace {

/// Returns the curve's vertices on the page.
QVector<PagePoint> projected(const Curve &curve, const Page &page)
{
    const Projection projection(page);
    QVector<PagePoint> points;
    points.reserve(curve.size());
    for (const CurveVertex &v : curve)
        points.append(projection(static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)));
    return points;
}

/// Calls `draw(first, last, color)` for each run of segments of one colour, with the indices of its first and last
/// vertex.
template <typename Draw>
void forEachRun(const Curve &curve, Draw draw)
{
    const int segments = curve.size() - 1;
    for (int first = 0, last = 0; first < segments; first = last) {
        const QRgb color = curve.at(first).color;
        while (last < segments && curve.at(last).color == color)
            ++last;
        draw(first, last, color);
    }
}

/// Returns the shortest text that reads back as `number`.
QByteArray shortest(double number)
{
    return QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
}

QByteArray nineDigits(float number)
{
    const QByteArray text = QByteArray::number(static_cast<double>(number), 'g', 9);
    // Qt drops the sign of zero.
    return number == 0.0F && std::signbit(number) ? '-' + text : text;
}

/// Returns the coordinates and the drawn colour of vertex `i` as six numbers, separated by `separator`.
QByteArray fields(const Curve &curve, int i, char separator)
{
    const CurveVertex &v = curve.at(i);
    const QRgb color = vertexColor(curve, i);
    QByteArray text = nineDigits(v.x) + separator + nineDigits(v.y) + separator + nineDigits(v.z);
    for (const int channel : {qRed(color), qGreen(color), qBlue(color)})
        text += separator + QByteArray::number(channel);
    return text;
}

} // namespace

QImage imageOf(const Curve &curve, const Page &page)
{
    const QVector<PagePoint> points = projected(curve, page);
    QVector<ImageVertex> vertices;
    vertices.reserve(points.size());
    for (int i = 0; i < points.size(); ++i) {
        const PagePoint &point = points.at(i);
        vertices.append({point.x, point.y, point.nearness, vertexColor(curve, i)});
    }
    return imageOfLine(vertices, static_cast<int>(page.width), static_cast<int>(page.height), page.lineWidth,
                       page.background);
}

QByteArray pngOf(const Curve &curve, const Page &page)
{
    QBuffer buffer;
    return QImageWriter(&buffer, "png").write(imageOf(curve, page)) ? buffer.data() : QByteArray();
}

QByteArray svgOf(const Curve &curve, const Page &page)
{
    const QByteArray width = shortest(page.width);
    const QByteArray height = shortest(page.height);
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      width + "mm\" height=\"" + height + "mm\" viewBox=\"0 0 " + width + ' ' + height + "\">\n";
    const QByteArray rectangle = "<rect width=\"" + width + "\" height=\"" + height + '"';
    if (page.background.isValid())
        text += rectangle + " fill=\"" + page.background.name().toLatin1() + "\"/>\n";
    text += "<clipPath id=\"page\">" + rectangle +
            "/></clipPath>\n"
            "<g clip-path=\"url(#page)\" fill=\"none\" stroke-width=\"" +
            shortest(page.lineWidth) + "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";

    const QVector<PagePoint> points = projected(curve, page);
    forEachRun(curve, [&text, &points](int first, int last, QRgb color) {
        text += "<path stroke=\"" + QColor(color).name().toLatin1() + "\" d=\"";
        for (int i = first; i <= last; ++i) {
            text += (i == first ? 'M' : 'L') + QByteArray::number(points.at(i).x, 'f', 4) + ' ' +
                    QByteArray::number(points.at(i).y, 'f', 4);
        }
        text += "\"/>\n";
    });
    return text + "</g>\n</svg>\n";
}

QByteArray pdfOf(const Curve &curve, const Page &page)
{
    constexpr int dotsPerInch = 1200;
    constexpr double dotsPerMillimetre = dotsPerInch / 25.4;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageSize(
        QPageSize(QSizeF(page.width, page.height), QPageSize::Millimeter, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    writer.setResolution(dotsPerInch);
    QPainter painter(&writer);
    painter.scale(dotsPerMillimetre, dotsPerMillimetre);
    if (page.background.isValid()) // 1 mm larger, because the page's size is rounded
        painter.fillRect(QRectF(0.0, 0.0, page.width + 1.0, page.height + 1.0), page.background);

    const QVector<PagePoint> points = projected(curve, page);
    forEachRun(curve, [&painter, &page, &points](int first, int last, QRgb color) {
        QPainterPath path(QPointF(points.at(first).x, points.at(first).y));
        for (int i = first + 1; i <= last; ++i)
            path.lineTo(points.at(i).x, points.at(i).y);
        painter.strokePath(path, QPen(QColor(color), page.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    });
    painter.end();
    return buffer.data();
}

QByteArray plyOf(const Curve &curve)
{
    QByteArray text = "ply\nformat ascii 1.0\nelement vertex " + QByteArray::number(curve.size()) +
                      "\nproperty float x\nproperty float y\nproperty float z\n"
                      "property uchar red\nproperty uchar green\nproperty uchar blue\nelement edge " +
                      QByteArray::number(curve.size() - 1) +
                      "\nproperty int vertex1\nproperty int vertex2\nend_header\n";
    for (int i = 0; i < curve.size(); ++i)
        text += fields(curve, i, ' ') + '\n';
    for (int i = 1; i < curve.size(); ++i)
        text += QByteArray::number(i - 1) + ' ' + QByteArray::number(i) + '\n';
    return text;
}

QByteArray csvOf(const Curve &curve)
{
    QByteArray text = "t,x,y,z,red,green,blue\n";
    for (int i = 0; i < curve.size(); ++i)
        text += nineDigits(curve.at(i).t) + ',' + fields(curve, i, ',') + '\n';
    return text;
}
