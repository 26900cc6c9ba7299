// SVG and PDF: the projection, the paths and, if rsvg-convert and pdftoppm are installed, the rendered pictures.

#include "engine/Pendrix3D.h"
#include "export/Writers.h"
#include "tests/export/ImageComparison.h"
#include "tests/support/SampleSize.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

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

/// Returns the position on the page at which the application's view shows `point`.
QPointF pagePosition(const CurvePoint &point, const Page &page)
{
    Vector v = {double(point.x), double(point.y), double(point.z)};
    v = rotated(v, {0.0, 0.0, 1.0}, page.turn.z / 16.0);
    v = rotated(v, {0.0, 1.0, 0.0}, page.turn.y / 16.0);
    v = rotated(v, {1.0, 0.0, 0.0}, 180.0 - page.turn.x / 16.0);
    const double depth = 5.0 - v[2];
    const double halfHeight = std::tan(pi / 8.0) * depth; // of the view, in scene units
    return {page.width / 2.0 + v[0] / halfHeight * page.height / 2.0, page.height / 2.0 * (1.0 - v[1] / halfHeight)};
}

struct Path
{
    QString color;
    QVector<QPointF> points;
};

struct Svg
{
    QStringList elements; ///< with their attributes but those of paths
    QVector<Path> paths;
    QString error;
};

Svg parsed(const QByteArray &text)
{
    // Four decimals, M before the first point and L before the others.
    static const QRegularExpression data(
        QStringLiteral("^M-?\\d+\\.\\d{4} -?\\d+\\.\\d{4}(L-?\\d+\\.\\d{4} -?\\d+\\.\\d{4})+$"));
    Svg svg;
    QXmlStreamReader reader(text);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("path")) {
            const QString d = attributes.value("d").toString();
            if (!data.match(d).hasMatch())
                svg.error = "path data: " + d.left(100);
            Path path{attributes.value("stroke").toString(), {}};
            const QStringList points = d.mid(1).split('L');
            for (const QString &point : points)
                path.points.append({point.section(' ', 0, 0).toDouble(), point.section(' ', 1).toDouble()});
            svg.paths.append(path);
        } else {
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
        const Svg svg = parsed(svgOf(curve, page));
        QCOMPARE(svg.error, QString());

        // Every segment has the colour of its first point; neighbours of one colour share a path.
        int i = 0;
        for (const Path &path : svg.paths) {
            QVERIFY(i == 0 || path.color != pdx3.colors.at(i - 1).name());
            for (int p = 0; p < path.points.size(); ++p) {
                const QPointF difference = path.points.at(p) - pagePosition(pdx3.points.at(i + p), page);
                QVERIFY(std::abs(difference.x()) <= 0.001 && std::abs(difference.y()) <= 0.001);
                QVERIFY(p + 1 == path.points.size() || path.color == pdx3.colors.at(i + p).name());
            }
            i += path.points.size() - 1;
        }
        QCOMPARE(i, 16665);
    }

    void oneColorMakesOnePath()
    {
        Curve curve = curveOf(pdx3.presets.at(1));
        for (CurveVertex &v : curve)
            v.color = qRgb(1, 2, 3);
        const Svg svg = parsed(svgOf(curve, Page{200, 200, 0.2, QColor(), {}}));
        QCOMPARE(svg.paths.size(), 1);
        QCOMPARE(svg.paths.first().color, QString("#010203"));
        QCOMPARE(svg.paths.first().points.size(), 16666);
    }

    void svgDescribesPage()
    {
        const Curve curve = curveOf(pdx3.presets.at(1));
        const Svg svg = parsed(svgOf(curve, Page{297, 210.5, 0.35, QColor("navy"), {}}));
        const QString group = "g clip-path=url(#page) fill=none stroke-width=0.35 stroke-linecap=round "
                              "stroke-linejoin=round";
        QCOMPARE(svg.elements, QStringList({"svg width=297mm height=210.5mm viewBox=0 0 297 210.5",
                                            "rect width=297 height=210.5 fill=#000080", "clipPath id=page",
                                            "rect width=297 height=210.5", group}));
        const QByteArray transparent = svgOf(curve, Page{297, 210.5, 0.35, QColor(), {}});
        QCOMPARE(parsed(transparent).elements.size(), 4);
    }

    void pdfHasNeitherFontsNorImages()
    {
        const QByteArray pdf = pdfOf(curveOf(pdx3.presets.at(1)), Page{200, 100, 0.2, Qt::white, {}});
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
        const Page page{152.4, 101.6, 0.3, Qt::white, {480, 400, 16 * preset}};
        const Curve curve = curveOf(pdx3.presets.at(preset));
        QVERIFY(save(svg, svgOf(curve, page)) && save(pdf, pdfOf(curve, page)));
        QVERIFY(run("rsvg-convert", {"--width=600", "--height=400", "--output=" + png, svg}));
        QVERIFY(run("pdftoppm", {"-r", "100", "-png", "-singlefile", pdf, folder.filePath("pdf")}));
        const ImageComparison result = compareImages(QImage(png), QImage(folder.filePath("pdf.png")));
        QVERIFY2(
            result.isAlike(),
            qPrintable(
                QString("correlation %1, %2 of the pixels differ").arg(result.correlation).arg(result.differingPart)));
        qInfo("correlation %.4f, %.2f %% of the pixels differ", result.correlation, 100.0 * result.differingPart);
    }
};

QTEST_GUILESS_MAIN(VectorWritersTest)
#include "VectorWritersTest.moc"
