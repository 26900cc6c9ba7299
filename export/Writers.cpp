#include "export/Writers.h"

#include "export/LineImage.h"

#include <QBuffer>
#include <QImageWriter>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>

#include <cmath>

namespace {

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

/// Returns the channels of `color`, each after a `separator`.
QByteArray channels(QRgb color, char separator)
{
    QByteArray text;
    for (const int channel : {qRed(color), qGreen(color), qBlue(color)})
        text += separator + QByteArray::number(channel);
    return text;
}

/// Returns the coordinates and the drawn colour of vertex `i` as six numbers, separated by `separator`.
QByteArray fields(const Curve &curve, int i, char separator)
{
    const CurvePoint &p = curve.points.at(i);
    return nineDigits(p.x) + separator + nineDigits(p.y) + separator + nineDigits(p.z) +
           channels(vertexColor(curve.colors, i), separator);
}

/// SVG path data in relative coordinates with at most three decimals, and without the letters, separators and zeros
/// that the syntax can do without: they are a fifth of the file. Positions are rounded before their differences are
/// taken, so that rounding errors do not add up.
class PathData
{
public:
    explicit PathData(const QPointF &start) { add('m', {start}); }

    void lineTo(const QPointF &end) { add('m', {end}); } // further positions after `m` are ends of lines

    void curveTo(const QPointF &control1, const QPointF &control2, const QPointF &end)
    {
        add('c', {control1, control2, end});
    }

    QByteArray text;

private:
    /// Appends `command` with the positions of `points` relative to the present position, and moves to the last of
    /// them.
    void add(char command, std::initializer_list<QPointF> points)
    {
        if (command != lastCommand) {
            text += command;
            lastCommand = command;
            lastNumber.clear();
        }
        qint64 endX = 0;
        qint64 endY = 0;
        for (const QPointF &point : points) {
            endX = std::llround(point.x() * 1000.0);
            endY = std::llround(point.y() * 1000.0);
            for (const qint64 thousandths : {endX - x, endY - y}) {
                const QByteArray next = number(thousandths);
                const bool isSeparate =
                    lastNumber.isEmpty() || next.startsWith('-') || (next.startsWith('.') && lastNumber.contains('.'));
                text += (isSeparate ? "" : " ") + next;
                lastNumber = next;
            }
        }
        x = endX;
        y = endY;
    }

    static QByteArray number(qint64 thousandths)
    {
        const qint64 size = std::abs(thousandths);
        QByteArray digits = size < 1000 ? QByteArray() : QByteArray::number(size / 1000);
        if (size % 1000 != 0) {
            digits += '.' + QByteArray::number(1000 + size % 1000).mid(1);
            while (digits.endsWith('0'))
                digits.chop(1);
        }
        return (thousandths < 0 ? "-" : "") + (digits.isEmpty() ? QByteArray("0") : digits);
    }

    qint64 x = 0; ///< present position in thousandths
    qint64 y = 0;
    char lastCommand = 0;
    QByteArray lastNumber; ///< of `lastCommand`, empty before the first
};

} // namespace

QByteArray pngOf(const Drawing &drawing, const Page &page)
{
    QImage image = imageOf(drawing, page);
    // QImageWriter writes no resolution unless it is positive. QImage ignores 0.
    const int dotsPerMetre = page.dotsPerMillimetre > 0.0 ? qRound(page.dotsPerMillimetre * 1000.0) : -1;
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    QBuffer buffer;
    return QImageWriter(&buffer, "png").write(image) ? buffer.data() : QByteArray();
}

QByteArray svgOf(const Drawing &drawing, const Page &page)
{
    const QByteArray width = shortest(page.width);
    const QByteArray height = shortest(page.height);
    const QByteArray rectangle = "<rect width=\"" + width + "\" height=\"" + height + '"';
    const QByteArray clip = "page-" + width + 'x' + height;
    const bool isClipped = leavesPage(drawing, page);
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      width + "mm\" height=\"" + height + "mm\" viewBox=\"0 0 " + width + ' ' + height + "\">\n";
    if (isClipped)
        text += "<defs><clipPath id=\"" + clip + "\">" + rectangle + "/></clipPath></defs>\n";
    if (page.background.isValid())
        text += rectangle + " fill=\"" + page.background.name().toLatin1() + "\"/>\n";
    if (isClipped)
        text += "<g clip-path=\"url(#" + clip + ")\">\n";
    const QPointF centre(page.width / 2.0, page.height / 2.0);
    text += "<g transform=\"translate(" + shortest(centre.x()) + ' ' + shortest(centre.y()) +
            ")\" fill=\"none\" stroke-width=\"" + shortest(page.lineWidth) +
            "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">";
    forEachPart(drawing, page, [&text, &drawing, &centre](int first, int last, QRgb color) {
        PathData data(drawing.position(first) - centre);
        for (int i = first; i < last; ++i) {
            const QPointF end = drawing.position(i + 1) - centre;
            if (drawing.controls.isEmpty())
                data.lineTo(end);
            else
                data.curveTo(drawing.controls.at(2 * i) - centre, drawing.controls.at(2 * i + 1) - centre, end);
        }
        text += "<path stroke=\"" + QColor(color).name().toLatin1() + "\"\nd=\"" + data.text + "\"/>";
    });
    return text + (isClipped ? "</g>\n</g>\n</svg>\n" : "</g>\n</svg>\n");
}

QByteArray pdfOf(const Drawing &drawing, const Page &page)
{
    constexpr int dotsPerInch = 1200;
    constexpr double dotsPerMillimetre = dotsPerInch / millimetresPerInch;
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
    forEachPart(drawing, page, [&painter, &drawing, &page](int first, int last, QRgb color) {
        painter.strokePath(drawing.path(first, last),
                           QPen(QColor(color), page.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    });
    painter.end();
    return buffer.data();
}

QByteArray plyOf(const Curve &curve)
{
    const int count = static_cast<int>(curve.points.size());
    const QByteArray color = "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    QByteArray text = "ply\nformat ascii 1.0\nelement vertex " + QByteArray::number(count) +
                      "\nproperty float x\nproperty float y\nproperty float z\n" + color + "element edge " +
                      QByteArray::number(count - 1) + "\nproperty int vertex1\nproperty int vertex2\n" + color +
                      "end_header\n";
    for (int i = 0; i < count; ++i)
        text += fields(curve, i, ' ') + '\n';
    for (int i = 1; i < count; ++i)
        text += QByteArray::number(i - 1) + ' ' + QByteArray::number(i) + channels(curve.colors.at(i - 1), ' ') + '\n';
    return text;
}

QByteArray csvOf(const Curve &curve)
{
    const int count = static_cast<int>(curve.points.size());
    const QVector<float> times = timesOf(count);
    QByteArray text = "t,x,y,z,red,green,blue\n";
    for (int i = 0; i < count; ++i)
        text += nineDigits(times.at(i)) + ',' + fields(curve, i, ',') + '\n';
    return text;
}
