// SVG and PDF: the projection, the paths and, if rsvg-convert and pdftoppm are installed, the rendered pictures.

#include "engine/Pendrix3D.h"
#include "export/LineImage.h"
#include "export/Writers.h"
#include "tests/export/ImageComparison.h"
#include "tests/support/SampleSize.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>

Q_DECLARE_METATYPE(Page)

namespace {

using Vector = std::array<double, 3>;

constexpr double pi = 3.14159265358979323846;

/// Returns `v` rotated by `degrees` about the unit vector `axis`, by Rodrigues' formula.
Vector rotated(const Vector &v, const Vector &axis, double degrees)
{
    const double s = std::sin(degrees * pi / 180.0);
    const double c = std::cos(degrees * pi / 180.0);
    const double dot = axis[0] * v[0] + axis[1] * v[1] + axis[2] * v[2];
    const Vector cross = {axis[1] * v[2] - axis[2] * v[1], axis[2] * v[0] - axis[0] * v[2],
                          axis[0] * v[1] - axis[1] * v[0]};
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = v[i] * c + cross[i] * s + axis[i] * dot * (1.0 - c);
    return result;
}

/// Returns the point rotated as in the application's view. The eye is at z = 5.
Vector rotated(Vector v, const Page &page)
{
    v = rotated(v, {0.0, 0.0, 1.0}, page.turn.z / 16.0);
    v = rotated(v, {0.0, 1.0, 0.0}, page.turn.y / 16.0);
    return rotated(v, {1.0, 0.0, 0.0}, 180.0 - page.turn.x / 16.0);
}

/// Returns the position on the page at which the application's view shows `point`.
QPointF pagePosition(const Vector &point, const Page &page)
{
    const Vector v = rotated(point, page);
    const double depth = 5.0 - v[2];
    const double halfHeight = std::tan(pi / 8.0) * depth; // of the view, in scene units
    return {page.width / 2.0 + v[0] / halfHeight * page.height / 2.0, page.height / 2.0 * (1.0 - v[1] / halfHeight)};
}

Vector vectorOf(const CurvePoint &point)
{
    return {double(point.x), double(point.y), double(point.z)};
}

struct Path
{
    QString color;
    QVector<QPointF> points;
    QVector<QPointF> controls; ///< two for each segment that is a Bézier curve
};

/// Returns the path of the path data `d`, which starts at `origin`: relative commands m and c, and numbers with at most
/// three decimals. Returns a path without points if there is anything else.
Path parsedPath(const QString &d, const QPointF &origin)
{
    static const QRegularExpression token(QStringLiteral("\\G ?([mc]|-?(\\d+(\\.\\d{1,3})?|\\.\\d{1,3}))"));
    Path path;
    QChar command;
    QPointF at = origin;
    QVector<double> numbers;
    int end = 0;
    for (auto i = token.globalMatch(d); i.hasNext();) {
        const QRegularExpressionMatch match = i.next();
        end = int(match.capturedEnd());
        if (match.captured(1).at(0).isLetter()) {
            command = match.captured(1).at(0);
            continue;
        }
        numbers.append(match.captured(1).toDouble());
        if (numbers.size() < (command == 'c' ? 6 : 2))
            continue;
        const QPointF start = at;
        for (int n = 0; n < numbers.size(); n += 2) {
            const QPointF point = start + QPointF(numbers.at(n), numbers.at(n + 1));
            if (n + 2 < numbers.size())
                path.controls.append(point);
            else
                at = point;
        }
        path.points.append(at);
        numbers.clear();
    }
    return end == d.size() && numbers.isEmpty() ? path : Path();
}

struct Svg
{
    QStringList elements; ///< with their attributes but those of paths
    QVector<Path> paths;
    QString error;
};

Svg parsed(const QByteArray &text)
{
    static const QRegularExpression translation(QStringLiteral("^translate\\((\\S+) (\\S+)\\)$"));
    Svg svg;
    QPointF origin;
    QXmlStreamReader reader(text);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("path")) {
            const QString d = attributes.value("d").toString();
            Path path = parsedPath(d, origin);
            if (path.points.size() < 2)
                svg.error = "path data: " + d.left(100);
            path.color = attributes.value("stroke").toString();
            svg.paths.append(path);
        } else {
            const auto match = translation.match(attributes.value("transform").toString());
            if (match.hasMatch())
                origin = {match.captured(1).toDouble(), match.captured(2).toDouble()};
            QString element = reader.name().toString();
            for (const QXmlStreamAttribute &attribute : attributes)
                element += ' ' + attribute.name().toString() + '=' + attribute.value().toString();
            svg.elements.append(element);
        }
    }
    if (reader.hasError())
        svg.error = reader.errorString();
    return svg;
}

QByteArray svgText(const Curve &curve, const Page &page)
{
    return svgOf(drawingOf(curve, page), page);
}

QByteArray pdfText(const Curve &curve, const Page &page)
{
    return pdfOf(drawingOf(curve, page), page);
}

bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool save(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

class VectorWritersTest : public QObject
{
    Q_OBJECT

private slots:
    void svgCoordinatesEqualProjection_data()
    {
        QTest::addColumn<Page>("page");
        const QVector<QSizeF> sizes = {{200, 200}, {297, 210}, {123.456, 5000}, {5000, 5000}, {1, 2.5}};
        const QVector<Turn> turns = {{0, 0, 0}, {480, 400, 0}, {0, 0, 1440}, {1, 2879, 5759}, {5001, 1234, 777}};
        for (int i = 0; i < sampleSize(5, 25); ++i) {
            const QSizeF size = sizes.at(i % 5);
            const Turn turn = turns.at((i + i / 5) % 5);
            QTest::addRow("%gx%g, %d,%d,%d", size.width(), size.height(), turn.x, turn.y, turn.z)
                << Page{size.width(), size.height(), 0.2, QColor(), turn};
        }
    }

    void svgCoordinatesEqualProjection()
    {
        QFETCH(Page, page);
        static int preset = 0;
        const Curve curve = curveOf(pdx3.presets.at(preset++ % 12));
        const Svg svg = parsed(svgText(curve, page));
        QCOMPARE(svg.error, QString());

        // Every segment has the colour of its first point; neighbours of one colour share a path.
        int i = 0;
        for (const Path &path : svg.paths) {
            QVERIFY(i == 0 || path.color != pdx3.colors.at(i - 1).name());
            for (int p = 0; p < path.points.size(); ++p) {
                const QPointF difference = path.points.at(p) - pagePosition(vectorOf(pdx3.points.at(i + p)), page);
                QVERIFY(std::abs(difference.x()) <= 0.001 && std::abs(difference.y()) <= 0.001);
                QVERIFY(p + 1 == path.points.size() || path.color == pdx3.colors.at(i + p).name());
            }
            i += static_cast<int>(path.points.size()) - 1;
        }
        QCOMPARE(i, 16665);
    }

    void oneColorMakesOnePath()
    {
        Curve curve = curveOf(pdx3.presets.at(1));
        curve.colors.fill(qRgb(1, 2, 3));
        const Svg svg = parsed(svgText(curve, Page{200, 200, 0.2, QColor(), {}}));
        QCOMPARE(svg.paths.size(), 1);
        QCOMPARE(svg.paths.first().color, QString("#010203"));
        QCOMPARE(svg.paths.first().points.size(), 16666);
    }

    void svgDescribesPage()
    {
        const Curve curve = curveOf(pdx3.presets.at(1));
        const QString group = "g transform=translate(148.5 105.25) fill=none stroke-width=0.35 stroke-linecap=round "
                              "stroke-linejoin=round";
        const QString root = "svg width=297mm height=210.5mm viewBox=0 0 297 210.5";
        QCOMPARE(parsed(svgText(curve, Page{297, 210.5, 0.35, QColor(), {}})).elements, QStringList({root, group}));
        QCOMPARE(parsed(svgText(curve, Page{297, 210.5, 0.35, QColor("navy"), {}})).elements,
                 QStringList({root, "rect width=297 height=210.5 fill=#000080", group}));
    }

    void svgHasClipPathOnlyIfLineLeavesPage()
    {
        const Curve curve = curveOf({0.0F, 1.0F, 0.0F, 0.0F, 0.0F, 0.0F}); // a horizontal line through the centre
        Page page{100, 100, 0.2, QColor(), {}};
        const QRectF bounds = drawingOf(curve, page).bounds();
        page.lineWidth = 2.0 * std::min(bounds.left(), 100.0 - bounds.right()) - 0.01; // to the edge of the page
        QVERIFY(!svgText(curve, page).contains("clip"));
        page.lineWidth += 0.02;
        const QStringList elements = parsed(svgText(curve, page)).elements;
        QCOMPARE(elements.mid(1, 4), QStringList({"defs", "clipPath id=page-100x100", "rect width=100 height=100",
                                                  "g clip-path=url(#page-100x100)"}));
    }

    void defaultSvgIsSmall()
    {
        const auto size = svgText(curveOf(pdx3.presets.at(0)), Page{200, 200, 0.2, QColor(), {}}).size();
        QVERIFY2(size <= 800000, qPrintable(QString::number(size)));
    }

    void depthOrderStartsWithFarthestSegment()
    {
        for (const bool isSmooth : {false, true}) {
            Curve curve = curveOf(pdx3.presets.at(2));
            for (int i = 0; i < curve.colors.size(); ++i) // the colour is the index
                curve.colors[i] = 0xFF000000U | QRgb(i);
            Page page{200, 200, 0.2, QColor(), {480, 400, 0}};
            page.isInDepthOrder = true;
            page.isSmooth = isSmooth;
            const Svg svg = parsed(svgText(curve, page));
            QCOMPARE(svg.error, QString());
            QVector<bool> isFound(16665, false);
            double last = 0.0;
            for (const Path &path : svg.paths) {
                const int i = QStringView(path.color).mid(1).toInt(nullptr, 16);
                QCOMPARE(path.points.size(), 2);
                QVERIFY(!isFound.at(i));
                isFound[i] = true;
                const auto nearness = [&](int n) {
                    return 1.0 / (5.0 - rotated(vectorOf(curve.points.at(n)), page)[2]);
                };
                const double mean = (nearness(i) + nearness(i + 1)) / 2.0;
                QVERIFY(mean >= last - 1e-7);
                last = mean;
                const QPointF difference = path.points.at(0) - pagePosition(vectorOf(curve.points.at(i)), page);
                QVERIFY(std::abs(difference.x()) <= 0.001 && std::abs(difference.y()) <= 0.001);
            }
            QVERIFY(!isFound.contains(false));
        }
    }

    void smoothSegmentsFollowExactCurve_data()
    {
        QTest::addColumn<QVector<float>>("row");
        QTest::addColumn<double>("limit"); // in millimetres
        QTest::newRow("preset 7") << pdx3.presets.at(6) << 0.05;
        QTest::newRow("30, 30, 30") << QVector<float>({30.0F, 30.0F, 30.0F, 0.25F, 0.1F, 0.0F}) << 0.05;
        // The perspective adds oscillations of twice the frequency.
        QTest::newRow("-30, 29, 30") << QVector<float>({-30.0F, 29.0F, 30.0F, 0.7F, -0.4F, 0.0F}) << 0.08;
        for (int i = 1; i <= sampleSize(3, 100); ++i) {
            const auto value = [i](int n) { return float(std::fmod(i * 7.31 + n * 23.7 * i, 52.0) - 26.0); };
            QTest::addRow("row %d", i) << QVector<float>({value(1), value(2), value(3), value(4), value(5), 0.0F})
                                       << 0.05;
        }
    }

    void smoothSegmentsFollowExactCurve()
    {
        QFETCH(QVector<float>, row);
        QFETCH(double, limit);
        const Curve curve = curveOf(row);
        Page page{200, 200, 0.2, QColor(), {480, 400, 160}};
        page.isSmooth = true;
        const Svg svg = parsed(svgText(curve, page));
        QCOMPARE(svg.error, QString());
        const auto exact = [&row](double t, double a) {
            const auto sine = [&](int frequency, double phase) {
                return std::sin(double(float(phase * double(6.2831855F))) + double(row.at(frequency)) * t) * a;
            };
            return Vector{sine(1, 0.0), sine(0, double(row.at(3))), sine(2, double(row.at(4)))};
        };
        const QVector<float> times = timesOf(16666);
        const QVector<float> amplitudes = amplitudesOf(16666);
        double farthest = 0.0;
        int i = 0;
        for (const Path &path : svg.paths) {
            QCOMPARE(path.controls.size(), 2 * (path.points.size() - 1));
            for (int p = 0; p + 1 < path.points.size(); ++p, ++i) {
                // The vertices stay.
                for (const int end : {0, 1}) {
                    const QPointF difference =
                        path.points.at(p + end) - pagePosition(vectorOf(curve.points.at(i + end)), page);
                    QVERIFY(std::abs(difference.x()) <= 0.001 && std::abs(difference.y()) <= 0.001);
                }
                const QPointF middle = (path.points.at(p) + 3.0 * path.controls.at(2 * p) +
                                        3.0 * path.controls.at(2 * p + 1) + path.points.at(p + 1)) /
                                       8.0;
                const Vector point = exact((double(times.at(i)) + double(times.at(i + 1))) / 2.0,
                                           (double(amplitudes.at(i)) + double(amplitudes.at(i + 1))) / 2.0);
                const QPointF difference = middle - pagePosition(point, page);
                farthest = std::max(farthest, std::hypot(difference.x(), difference.y()));
            }
        }
        QCOMPARE(i, 16665);
        QVERIFY2(farthest <= limit, qPrintable(QString::number(farthest)));
        qInfo("at most %.4f mm from the exact curve", farthest);
    }

    void pdfHasNeitherFontsNorImages()
    {
        const QByteArray pdf = pdfText(curveOf(pdx3.presets.at(1)), Page{200, 100, 0.2, Qt::white, {}});
        QVERIFY(pdf.startsWith("%PDF-"));
        QVERIFY(pdf.contains("/MediaBox [0 0 567.000000 283.000000]"));
        QVERIFY(!pdf.contains("/Subtype /Image") && !pdf.contains("/Type /Font"));
    }

    void renderersDrawSvgAndPdfAlike_data()
    {
        QTest::addColumn<int>("preset");
        for (int preset = 0; preset < 12; preset += sampleSize(5, 1))
            QTest::addRow("preset %d", preset + 1) << preset;
    }

    void renderersDrawSvgAndPdfAlike()
    {
#ifndef PENDRIX_HAS_RENDERERS
        QSKIP("rsvg-convert or pdftoppm is not installed");
#endif
        QFETCH(int, preset);
        const QTemporaryDir folder;
        const QString svg = folder.filePath("curve.svg");
        const QString pdf = folder.filePath("curve.pdf");
        const QString png = folder.filePath("curve.png");
        // 6 by 4 inches: whole points, and 600 by 400 pixels at 100 dots per inch. The curve exceeds the page.
        Page page{152.4, 101.6, 0.3, Qt::white, {480, 400, 16 * preset}};
        page.isSmooth = preset % 2 == 1;
        page.isInDepthOrder = preset % 10 == 0;
        const Curve curve = curveOf(pdx3.presets.at(preset));
        QVERIFY(save(svg, svgText(curve, page)) && save(pdf, pdfText(curve, page)));
        QVERIFY(run("rsvg-convert", {"--width=600", "--height=400", "--output=" + png, svg}));
        QVERIFY(run("pdftoppm", {"-r", "100", "-png", "-singlefile", pdf, folder.filePath("pdf")}));
        const ImageComparison result = compareImages(QImage(png), QImage(folder.filePath("pdf.png")));
        QVERIFY2(
            result.isAlike(),
            qPrintable(
                QString("correlation %1, %2 of the pixels differ").arg(result.correlation).arg(result.differingPart)));
        qInfo("correlation %.4f, %.2f %% of the pixels differ", result.correlation, 100.0 * result.differingPart);
    }

    void depthOrderHidesFarSegmentsAsImage()
    {
#ifndef PENDRIX_HAS_RENDERERS
        QSKIP("rsvg-convert or pdftoppm is not installed");
#endif
        const QTemporaryDir folder;
        const Curve curve = curveOf(pdx3.presets.at(9));
        Page page{101.6, 101.6, 2.54, Qt::white, {480, 400, 0}}; // 400 by 400 pixels at 100 dots per inch
        Page image = page;
        image.width = image.height = 400.0;
        image.lineWidth = 10.0;
        const QImage expected = imageOf(drawingOf(curve, image), image);
        const auto svgIsLikeImage = [&] {
            const bool isRendered =
                save(folder.filePath("a.svg"), svgText(curve, page)) &&
                run("rsvg-convert",
                    {"--width=400", "--height=400", "--output=" + folder.filePath("a.png"), folder.filePath("a.svg")});
            return isRendered && compareImages(QImage(folder.filePath("a.png")), expected).isAlike();
        };
        const auto pdfIsLikeImage = [&] {
            const bool isRendered =
                save(folder.filePath("b.pdf"), pdfText(curve, page)) &&
                run("pdftoppm", {"-r", "100", "-png", "-singlefile", folder.filePath("b.pdf"), folder.filePath("b")});
            return isRendered && compareImages(QImage(folder.filePath("b.png")), expected).isAlike();
        };
        QVERIFY(!svgIsLikeImage() && !pdfIsLikeImage());
        page.isInDepthOrder = true;
        QVERIFY(svgIsLikeImage() && pdfIsLikeImage());
    }
};

QTEST_GUILESS_MAIN(VectorWritersTest)
#include "VectorWritersTest.moc"
