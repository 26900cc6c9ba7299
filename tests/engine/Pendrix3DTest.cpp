#include "engine/Pendrix3D.h"

#include "color/ColorScale.h"
#include "tests/support/FloatBits.h"
#include "tests/support/FakeOpenGL.h"

#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>

namespace {

QVector<quint32> bitsOf(const QVector<float> &row)
{
    QVector<quint32> bits;
    for (const float value : row)
        bits.append(::bitsOf(value));
    return bits;
}

using Row = QVector<quint32>;

/// The presets as people see them, one row a line, in the bits of their floats.
QVector<Row> expectedPresets()
{
    constexpr quint32 m3 = 0xC0400000, m1 = 0xBF800000, n0 = 0, n1 = 0x3F800000, n2 = 0x40000000, n3 = 0x40400000,
                      n4 = 0x40800000, n6 = 0x40C00000, n11 = 0x41300000, n22 = 0x41B00000;
    constexpr quint32 n1_01 = 0x3F8147AE, n0_10 = 0x3DCCCCCD, n0_21 = 0x3E570A3D, n0_25 = 0x3E800000,
                      n0_29 = 0x3E947AE1, n0_30 = 0x3E99999A, n0_37 = 0x3EBD70A4, n0_43 = 0x3EDC28F6,
                      n0_46 = 0x3EEB851F, tiny = 0x3280D959; // 1.5e-8
    return {
        {n1, n2, n3, n0_46, tiny, n1},  {n2, n3, n4, n0_25, n0, n2},    {n1, n3, n1, n0_25, tiny, n4},
        {n2, n1, n3, n0_37, n0, n2},    {n2, n2, n11, n0_25, tiny, n2}, {n1, n1, n1_01, n0_25, n0_29, n0},
        {n4, n4, n22, n0_25, n0, n4},   {n1, n1, n4, n0_43, tiny, n3},  {n1, n2, n0, n0_10, n0_30, n2},
        {n6, n3, n2, n0_21, n0_30, n0}, {n1, n2, m1, n0_10, n0_30, n2}, {n6, m3, n2, n0_21, n0_30, n0},
    };
}

QVector<quint32> currentBits()
{
    return bitsOf({pdx3.freq1, pdx3.freq2, pdx3.freq3, pdx3.phase1, pdx3.phase2});
}

// Read before main, within a moment of the engine's construction.
const std::time_t atStart = std::time(nullptr);

} // namespace

class Pendrix3DTest : public QObject
{
    Q_OBJECT

private slots:
    void seedsTheRandomGeneratorFromTheTime() // first, before anything else draws from the generator
    {
        const int drawn = std::rand();
        bool found = false;
        for (std::time_t seed = atStart - 2; seed <= atStart + 2 && !found; ++seed) {
            std::srand(static_cast<unsigned int>(seed));
            found = std::rand() == drawn;
        }
        QVERIFY(found);
    }

    void construction()
    {
        QCOMPARE(pdx3.header, QStringList({"freq1", "freq2", "freq3", "phase1", "phase2", "color"}));
        QCOMPARE(bitsOf(pdx3.blankRow), Row(6, 0));
        QCOMPARE(pdx3.setIndex, 0);
        QCOMPARE(pdx3.paletteSize, 512);
        QCOMPARE(pdx3.paletteFrom, 0x0000FFU);
        QCOMPARE(pdx3.paletteTo, 0xFF0000U);
        QCOMPARE(bitsOf(pdx3.twoPi), 0x40C90FDBU);
        QCOMPARE(bitsOf(pdx3.step), 0x387BA882U);
        QCOMPARE(bitsOf(pdx3.total), 0x3F800000U);
        QCOMPARE(bitsOf(pdx3.radiusScale), 0x3F800000U);
        QCOMPARE(pdx3.colorMode, 1);
        QCOMPARE(currentBits(), expectedPresets().at(0).mid(0, 5));
        QCOMPARE(bitsOf(QVector<float>(pdx3.params, pdx3.params + 6)), expectedPresets().at(0));
        QCOMPARE(pdx3.nPoints, 16666);
        QCOMPARE(pdx3.points.size(), 16666);
        QCOMPARE(pdx3.colors.size(), 16666);
    }

    void presets()
    {
        QCOMPARE(pdx3.presets.size(), 12);
        for (int i = 0; i < 12; ++i)
            QCOMPARE(bitsOf(pdx3.presets.at(i)), expectedPresets().at(i));
    }

    void parameterList()
    {
        QCOMPARE(pdx3.paramList.size(), 64);
        for (int i = 0; i < 64; ++i)
            QCOMPARE(bitsOf(pdx3.paramList.at(i)), i < 12 ? expectedPresets().at(i) : Row(6, 0));
    }

    void palette()
    {
        QCOMPARE(pdx3.palette[0], 0x0000FFU);
        QCOMPARE(pdx3.palette[1], 0x0001FFU);
        QCOMPARE(pdx3.palette[128], 0x00FEFFU);
        QCOMPARE(pdx3.palette[256], 0x00FF00U);
        QCOMPARE(pdx3.palette[384], 0xFFFE00U);
        QCOMPARE(pdx3.palette[511], 0xFF0100U);
        for (int i = 0; i < 512; ++i)
            QCOMPARE(pdx3.palette[i], ColorScaleHSL(0x0000FF, 0xFF0000, static_cast<float>(i / 512.0)));
    }

    void presetsByNumber()
    {
        pdx3.set(13);
        QCOMPARE(pdx3.setIndex, 1);
        QCOMPARE(currentBits(), expectedPresets().at(1).mid(0, 5));
        QCOMPARE(pdx3.colorMode, 2);

        pdx3.set(11);
        pdx3.nextSet();
        QCOMPARE(pdx3.setIndex, 0);
        QCOMPARE(currentBits(), expectedPresets().at(0).mid(0, 5));

        for (int i = 1; i <= 25; ++i) {
            pdx3.nextSet();
            QCOMPARE(pdx3.setIndex, i % 12);
            QCOMPARE(currentBits(), expectedPresets().at(i % 12).mid(0, 5));
        }
    }

    void presetsByNumberIgnoreTheUsersRows()
    {
        const auto saved = pdx3.paramList;
        pdx3.paramList.clear();
        pdx3.set(64);
        QCOMPARE(pdx3.setIndex, 4);
        QCOMPARE(currentBits(), expectedPresets().at(4).mid(0, 5));
        pdx3.paramList = saved;
    }

    void negativePresetNumbersLeaveTheCurve()
    {
        pdx3.set(3);
        for (const int n : {-1, -11, -13, std::numeric_limits<int>::min()}) {
            pdx3.set(n);
            QCOMPARE(pdx3.setIndex, n % 12);
            QCOMPARE(currentBits(), expectedPresets().at(3).mid(0, 5));
        }
        pdx3.set(-12);
        QCOMPARE(currentBits(), expectedPresets().at(0).mid(0, 5));
    }

    void modesAreTruncated_data()
    {
        constexpr float inf = std::numeric_limits<float>::infinity();
        constexpr int none = std::numeric_limits<int>::min();
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("mode");
        QTest::newRow("2.9") << 2.9F << 2;
        QTest::newRow("-0.5") << -0.5F << 0;
        QTest::newRow("-1.5") << -1.5F << -1;
        QTest::newRow("subnormal") << 1e-45F << 0;
        QTest::newRow("largest that fits") << 2147483520.0F << 2147483520;
        QTest::newRow("lowest that fits") << -2147483648.0F << none;
        QTest::newRow("2^31") << 2147483648.0F << none;
        QTest::newRow("below -2^31") << -2147483904.0F << none;
        QTest::newRow("1e38") << 1e38F << none;
        QTest::newRow("-1e38") << -1e38F << none;
        QTest::newRow("inf") << inf << none;
        QTest::newRow("-inf") << -inf << none;
        QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << none;
    }

    void modesAreTruncated()
    {
        QFETCH(float, value);
        QFETCH(int, mode);
        pdx3.set(QVector<float>{1.0F, 2.0F, 3.0F, 0.1F, 0.2F, value});
        QCOMPARE(pdx3.colorMode, mode);
        QCOMPARE(bitsOf(pdx3.getParams()[5]), bitsOf(static_cast<float>(mode)));
        QCOMPARE(pdx3.points.size(), 16666);
        if (mode < 0 || mode > 4)
            QVERIFY(std::all_of(pdx3.colors.cbegin(), pdx3.colors.cend(),
                                [](const QColor &color) { return color == QColor(0, 0, 255); }));
    }

    void snapshot()
    {
        pdx3.set(QVector<float>{1.5F, -2.5F, 3.25F, 0.125F, -0.75F, 3.99F, 77.0F});
        const float *params = pdx3.getParams();
        QCOMPARE(params, pdx3.params);
        const QVector<float> expected = {1.5F, -2.5F, 3.25F, 0.125F, -0.75F, 3.0F};
        QCOMPARE(bitsOf(QVector<float>(params, params + 6)), bitsOf(expected));

        pdx3.set(0.1F, 0.2F, 0.3F, 0.4F, 0.5F, -7);
        QCOMPARE(bitsOf(QVector<float>(params, params + 6)),
                 bitsOf(QVector<float>{0.1F, 0.2F, 0.3F, 0.4F, 0.5F, -7.0F}));

        // The drift shows, and setParams alone takes a snapshot as well.
        pdx3.next();
        QCOMPARE(bitsOf(params[0]), bitsOf(pdx3.freq1));
        QCOMPARE(bitsOf(params[2]), bitsOf(pdx3.freq3));
        pdx3.freq2 = 9.0F;
        QCOMPARE(params[1], 0.2F);
        pdx3.setParams();
        QCOMPARE(params[1], 9.0F);
    }

    void shortRowsChangeNothing()
    {
        pdx3.set(2);
        for (int length = 0; length < 6; ++length) {
            pdx3.set(QVector<float>(length, 5.0F));
            QCOMPARE(currentBits(), expectedPresets().at(2).mid(0, 5));
        }
    }

    void selectingCopiesTheRow()
    {
        const auto saved = pdx3.paramList;
        pdx3.set(pdx3.paramList.at(1));
        pdx3.paramList[1][0] = 99.0F;
        pdx3.next(0.0, 0.0);
        QCOMPARE(pdx3.freq1, 2.0F);
        pdx3.paramList = saved;
    }

    void drift()
    {
        pdx3.set(0);
        float freq1 = 1.0F;
        float freq3 = 3.0F;
        quint64 step = 0x3F3A36E2EB1C432D;
        double stepValue = 0.0;
        std::memcpy(&stepValue, &step, sizeof stepValue);
        for (int i = 0; i < 2500; ++i) {
            pdx3.next();
            freq1 = static_cast<float>(static_cast<double>(freq1) + stepValue);
            freq3 = static_cast<float>(static_cast<double>(freq3) + stepValue);
            QCOMPARE(bitsOf(pdx3.freq1), bitsOf(freq1));
            QCOMPARE(bitsOf(pdx3.freq3), bitsOf(freq3));
        }
        QVERIFY(std::abs(pdx3.freq1 - 2.0F) < 0.001F);
        QVERIFY(std::abs(pdx3.freq3 - 4.0F) < 0.001F);
        QCOMPARE(currentBits().at(1), expectedPresets().at(0).at(1));
        QCOMPARE(currentBits().mid(3), expectedPresets().at(0).mid(3, 2));

        pdx3.next(0.25, -0.5);
        QCOMPARE(bitsOf(pdx3.freq1), bitsOf(static_cast<float>(static_cast<double>(freq1) + 0.25)));
        QCOMPARE(bitsOf(pdx3.freq3), bitsOf(static_cast<float>(static_cast<double>(freq3) - 0.5)));
        pdx3.set(0);
        QCOMPARE(pdx3.freq1, 1.0F);
    }

    void driftIsAddedInDouble()
    {
        // Added in float, nothing would be left.
        pdx3.set(-0.1F, 0.0F, -0.0004F, 0.0F, 0.0F, 0);
        pdx3.next(0.1, 0.0004);
        QCOMPARE(bitsOf(pdx3.freq1), bitsOf(-0x1.99999ap-30F));
        QCOMPARE(bitsOf(pdx3.freq3), bitsOf(0x1.638866p-37F));
        pdx3.set(-0.0004F, 0.0F, -0.0004F, 0.0F, 0.0F, 0);
        pdx3.next();
        QCOMPARE(bitsOf(pdx3.freq1), bitsOf(0x1.638866p-37F));
        QCOMPARE(bitsOf(pdx3.freq3), bitsOf(0x1.638866p-37F));
    }

    void strangeValuesAreKeptAsTheyAre()
    {
        const QVector<float> row = {std::numeric_limits<float>::quiet_NaN(), -0.0F, 1e-45F, -1e38F,
                                    std::numeric_limits<float>::infinity(),  0.0F};
        pdx3.set(row);
        QCOMPARE(currentBits(), bitsOf(row.mid(0, 5)));
        QCOMPARE(bitsOf(QVector<float>(pdx3.params, pdx3.params + 6)), bitsOf(row));
    }

    void randomRows()
    {
        const auto rows = pdx3.paramList;
        pdx3.set(7);
        for (unsigned int seed = 1; seed <= 1000; ++seed) {
            std::srand(seed);
            QVector<float> expected;
            for (const int bound : {100, 100, 100, 100, 100, 5})
                expected.append(static_cast<float>(std::rand() % bound));
            const int afterwards = std::rand();

            std::srand(seed);
            pdx3.setRandom();
            QCOMPARE(currentBits(), bitsOf(expected.mid(0, 5)));
            QCOMPARE(bitsOf(QVector<float>(pdx3.getParams(), pdx3.getParams() + 6)), bitsOf(expected));
            QCOMPARE(pdx3.colorMode, int(expected.at(5)));
            QCOMPARE(std::rand(), afterwards); // no more was drawn, and nothing seeded
        }
        QCOMPARE(pdx3.setIndex, 7);
        QCOMPARE(pdx3.paramList, rows);
    }

    void randomRowsShowAtOnce()
    {
        std::srand(2);
        pdx3.set(0);
        pdx3.setRandom();
        const QVector<CurvePoint> drawn = pdx3.points;
        const QVector<QColor> colors = pdx3.colors;
        pdx3.set(pdx3.freq1, pdx3.freq2, pdx3.freq3, pdx3.phase1, pdx3.phase2, pdx3.colorMode);
        QCOMPARE(drawn.size(), 16666);
        for (int i = 0; i < drawn.size(); ++i) {
            const CurvePoint &point = pdx3.points.at(i);
            QCOMPARE(bitsOf({drawn.at(i).x, drawn.at(i).y, drawn.at(i).z}), bitsOf({point.x, point.y, point.z}));
        }
        QCOMPARE(colors, pdx3.colors);
    }

    void aRandomFrequencyOfZeroStandsStill()
    {
        const auto drawsZero = [](unsigned int seed) {
            std::srand(seed);
            const int freq1 = std::rand() % 100;
            const int freq2 = std::rand() % 100;
            return freq1 != 0 && freq2 == 0;
        };
        unsigned int seed = 1;
        while (!drawsZero(seed))
            ++seed;
        std::srand(seed);
        pdx3.setRandom();
        QCOMPARE(pdx3.freq2, 0.0F);
        QVERIFY(std::all_of(pdx3.points.cbegin(), pdx3.points.cend(), [](const CurvePoint &p) { return p.x == 0.0F; }));
        QVERIFY(std::any_of(pdx3.points.cbegin(), pdx3.points.cend(), [](const CurvePoint &p) { return p.y != 0.0F; }));
    }

    void presetsAsText()
    {
        const QStringList expected = {
            "1, 2, 3, 0.46, 1.5e-08, 1", "2, 3, 4, 0.25, 0, 2",        "1, 3, 1, 0.25, 1.5e-08, 4",
            "2, 1, 3, 0.37, 0, 2",       "2, 2, 11, 0.25, 1.5e-08, 2", "1, 1, 1.01, 0.25, 0.29, 0",
            "4, 4, 22, 0.25, 0, 4",      "1, 1, 4, 0.43, 1.5e-08, 3",  "1, 2, 0, 0.1, 0.3, 2",
            "6, 3, 2, 0.21, 0.3, 0",     "1, 2, -1, 0.1, 0.3, 2",      "6, -3, 2, 0.21, 0.3, 0",
        };
        QCOMPARE(pdx3.preset2StringList(), expected);

        const auto rows = pdx3.paramList;
        pdx3.paramList[0][0] = 9.0F;
        pdx3.paramList.removeLast();
        QCOMPARE(pdx3.preset2StringList(), expected);
        pdx3.paramList = rows;

        pdx3.presets.append(QVector<float>());
        const QStringList withAnEmptyRow = pdx3.preset2StringList();
        pdx3.presets.removeLast();
        QCOMPARE(withAnEmptyRow, expected + QStringList(QString("")));

        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German)); // where a decimal comma is written
        const QStringList german = pdx3.preset2StringList();
        QLocale::setDefault(before);
        QCOMPARE(german, expected);
    }

    void drawsOneStripWithTheColorAfterTheVertex()
    {
        for (int preset = 0; preset < 12; ++preset) {
            pdx3.set(preset);
            FakeOpenGL::clear();
            pdx3.draw();

            const QVector<OpenGLCall> &calls = FakeOpenGL::calls();
            QCOMPARE(calls.size(), 2 + 2 * 16666);
            QCOMPARE(calls.first(), (OpenGLCall{"glBegin", {GL_LINE_STRIP}}));
            QCOMPARE(calls.last(), (OpenGLCall{"glEnd", {}}));
            for (int i = 0; i < 16666; ++i) {
                const CurvePoint &point = pdx3.points.at(i);
                QCOMPARE(calls.at(1 + 2 * i), (OpenGLCall{"glVertex3f", {point.x, point.y, point.z}}));
                // A colour's components are 16 bits wide, the byte twice; their share of the whole, to float.
                const QRgb rgb = pdx3.colors.at(i).rgb();
                const auto share = [](int byte) { return double(static_cast<float>(byte * 257 / 65535.0)); };
                QCOMPARE(calls.at(2 + 2 * i),
                         (OpenGLCall{"glColor4f", {share(qRed(rgb)), share(qGreen(rgb)), share(qBlue(rgb)), 1.0}}));
            }
        }
    }

    void drawsColorsThatWereChanged()
    {
        const auto colorCall = [](int point) {
            FakeOpenGL::clear();
            pdx3.draw();
            return FakeOpenGL::calls().at(2 + 2 * point);
        };
        const auto callOf = [](const QColor &color) {
            return OpenGLCall{"glColor4f",
                              {double(float(color.redF())), double(float(color.greenF())), double(float(color.blueF())),
                               double(float(color.alphaF()))}};
        };
        pdx3.set(0);
        const QColor before = pdx3.colors.at(5);
        const QColor odd = QColor::fromHsvF(0.3, 0.41, 0.72, 0.123);
        pdx3.colors[5] = odd;
        QCOMPARE(colorCall(5), callOf(odd));
        QCOMPARE(colorCall(6), callOf(pdx3.colors.at(6)));

        pdx3.colors = QVector<QColor>(16666, QColor(Qt::transparent));
        QCOMPARE(colorCall(5), callOf(Qt::transparent));
        pdx3.calcCoords();
        QCOMPARE(colorCall(5), callOf(before));

        // Copies that others hold keep what they were given, and the engine its own.
        QVector<QColor> copy = pdx3.colors;
        copy[5] = odd;
        QCOMPARE(colorCall(5), callOf(before));
        const QVector<QColor> held = pdx3.colors;
        const QVector<CurvePoint> heldPoints = pdx3.points;
        const CurvePoint heldPoint = heldPoints.at(5);
        pdx3.set(1);
        QCOMPARE(held.at(5), before);
        QCOMPARE(bitsOf(heldPoints.at(5).x), bitsOf(heldPoint.x));
        QVERIFY(pdx3.colors.at(5) != before);
        QCOMPARE(colorCall(5), callOf(pdx3.colors.at(5)));

        // A changed palette shows from the next pass on.
        const unsigned int saved = pdx3.palette[0];
        pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 9);
        pdx3.palette[0] = 0x123456;
        QCOMPARE(colorCall(5), callOf(QColor(saved)));
        pdx3.calcCoords();
        QCOMPARE(colorCall(5), callOf(QColor(0x12, 0x34, 0x56)));
        pdx3.palette[0] = saved;
        pdx3.calcCoords();
    }

    void drawsAnEmptyCurve()
    {
        const QVector<OpenGLCall> nothing = {{"glBegin", {GL_LINE_STRIP}}, {"glEnd", {}}};
        pdx3.set(0);
        pdx3.nPoints = 0;
        FakeOpenGL::clear();
        pdx3.draw();
        QCOMPARE(FakeOpenGL::calls(), nothing);

        pdx3.set(0);
        pdx3.points.clear();
        FakeOpenGL::clear();
        pdx3.draw();
        QCOMPARE(FakeOpenGL::calls(), nothing);

        pdx3.set(0);
        pdx3.colors.resize(3);
        FakeOpenGL::clear();
        pdx3.draw();
        QCOMPARE(FakeOpenGL::calls().size(), 2 + 2 * 3);
    }

    void drawingChangesNothing()
    {
        pdx3.set(5);
        const auto before = pdx3.colors;
        pdx3.draw();
        QCOMPARE(pdx3.colors, before);
        QCOMPARE(currentBits(), expectedPresets().at(5).mid(0, 5));
    }
};

QTEST_APPLESS_MAIN(Pendrix3DTest)
#include "Pendrix3DTest.moc"
