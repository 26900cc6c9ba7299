#include "export/Writers.h"

#include "export/LineImage.h"
#include "export/Projection.h"

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

bool write(QIODevice &device, const QByteArray &content)
{
    return device.write(content) == content.size();
}

/// Returns `number` with as many digits as are needed to read the same number back.
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

/// Returns x, y, z and the colour of vertex `i`, each after `separator` but the first.
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

bool writePng(const Curve &curve, const Page &page, QIODevice &device)
{
    const QVector<PagePoint> points = projected(curve, page);
    QVector<ImageVertex> vertices;
    vertices.reserve(points.size());
    for (int i = 0; i < points.size(); ++i) {
        const PagePoint &point = points.at(i);
        vertices.append({point.x, point.y, point.nearness, vertexColor(curve, i)});
    }
    const QImage image = imageOfLine(vertices, static_cast<int>(page.width), static_cast<int>(page.height),
                                     page.lineWidth, page.background);
    return QImageWriter(&device, "png").write(image);
}

bool writeSvg(const Curve &curve, const Page &page, QIODevice &device)
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
    return write(device, text + "</g>\n</svg>\n");
}

bool writePdf(const Curve &curve, const Page &page, QIODevice &device)
{
    constexpr int dotsPerInch = 1200;
    constexpr double dotsPerMillimetre = dotsPerInch / 25.4;
    QPdfWriter writer(&device);
    writer.setPageSize(
        QPageSize(QSizeF(page.width, page.height), QPageSize::Millimeter, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    writer.setResolution(dotsPerInch);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    painter.scale(dotsPerMillimetre, dotsPerMillimetre);
    if (page.background.isValid()) // to the edge, whatever the rounding of the page's size
        painter.fillRect(QRectF(0.0, 0.0, page.width + 1.0, page.height + 1.0), page.background);

    const QVector<PagePoint> points = projected(curve, page);
    forEachRun(curve, [&painter, &page, &points](int first, int last, QRgb color) {
        QPainterPath path(QPointF(points.at(first).x, points.at(first).y));
        for (int i = first + 1; i <= last; ++i)
            path.lineTo(points.at(i).x, points.at(i).y);
        painter.strokePath(path, QPen(QColor(color), page.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    });
    return painter.end();
}

bool writePly(const Curve &curve, QIODevice &device)
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
    return write(device, text);
}

bool writeCsv(const Curve &curve, QIODevice &device)
{
    QByteArray text = "t,x,y,z,red,green,blue\n";
    for (int i = 0; i < curve.size(); ++i)
        text += nineDigits(curve.at(i).t) + ',' + fields(curve, i, ',') + '\n';
    return write(device, text);
}
