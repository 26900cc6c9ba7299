#include "engine/Pendrix3D.h"

#include "color/ColorScale.h"
#include "tests/support/FakeOpenGL.h"
#include "tests/support/FloatBits.h"
#include "tests/support/ReferenceCurve.h"

#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace {

using Row = QVector<quint32>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

Row bitsOf(const QVector<float> &row)
{
    Row bits;
    for (const float value : row)
        bits.append(::bitsOf(value));
    return bits;
}

/// Returns the bits of the presets.
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

/// Returns the bits of the current parameters in row order, with the mode as a float.
Row currentRow()
{
    return bitsOf({pdx3.freq1, pdx3.freq2, pdx3.freq3, pdx3.phase1, pdx3.phase2, static_cast<float>(pdx3.colorMode)});
}

/// Returns the bits of the engine's copy of the parameters, which setParams makes.
Row snapshot()
{
    return bitsOf(QVector<float>(pdx3.getParams(), pdx3.getParams() + 6));
}

QVector<OpenGLCall> drawCalls()
{
    FakeOpenGL::clear();
    pdx3.draw();
    return FakeOpenGL::calls();
}

/// Returns the call that sets a colour with these 16-bit components.
OpenGLCall colorCall(int red, int green, int blue, int alpha)
{
    const auto part = [](int component) { return double(static_cast<float>(component / 65535.0)); };
    return {"glColor4f", {part(red), part(green), part(blue), part(alpha)}};
}

OpenGLCall colorCall(QRgb rgb)
{
    return colorCall(qRed(rgb) * 257, qGreen(rgb) * 257, qBlue(rgb) * 257, 65535);
}

// Read before main, immediately before or after the engine's construction.
const std::time_t atStart = std::time(nullptr);

} // namespace

class Pendrix3DTest : public QObject
{
    Q_OBJECT

private slots:
    void constructorSeedsRandFromTime() // first, before another call of rand
    {
        const int drawn = std::rand();
        bool found = false;
        for (std::time_t seed = atStart - 2; seed <= atStart + 2 && !found; ++seed) {
            std::srand(static_cast<unsigned int>(seed));
            found = std::rand() == drawn;
        }
        QVERIFY(found);
    }

    void constructionSetsFields()
    {
        QCOMPARE(pdx3.header, QStringList({"freq1", "freq2", "freq3", "phase1", "phase2", "color"}));
        QCOMPARE(bitsOf(pdx3.blankRow), Row(6, 0));
        QCOMPARE(pdx3.setIndex, 0);
        QCOMPARE(pdx3.paletteSize, 512);
        QCOMPARE(pdx3.paletteFrom, 0x0000FFU);
        QCOMPARE(pdx3.paletteTo, 0xFF0000U);
        QCOMPARE(bitsOf({pdx3.twoPi, pdx3.step, pdx3.total, pdx3.radiusScale}),
                 Row({0x40C90FDB, 0x387BA882, 0x3F800000, 0x3F800000}));
        QCOMPARE(currentRow(), expectedPresets().at(0));
        QCOMPARE(snapshot(), expectedPresets().at(0));
        QCOMPARE(pdx3.nPoints, 16666);

        QCOMPARE(pdx3.presets.size(), 12);
        QCOMPARE(pdx3.paramList.size(), 64);
        for (int i = 0; i < 64; ++i) {
            QCOMPARE(bitsOf(pdx3.paramList.at(i)), i < 12 ? expectedPresets().at(i) : Row(6, 0));
            QCOMPARE(bitsOf(pdx3.presets.value(i)), i < 12 ? expectedPresets().at(i) : Row());
        }
    }

    void constructionFillsPalette()
    {
        QCOMPARE(pdx3.palette[0], 0x0000FFU);
        QCOMPARE(pdx3.palette[1], 0x0001FFU);
        QCOMPARE(pdx3.palette[256], 0x00FF00U);
        QCOMPARE(pdx3.palette[511], 0xFF0100U);
        for (int i = 0; i < 512; ++i)
            QCOMPARE(pdx3.palette[i], ColorScaleHSL(0x0000FF, 0xFF0000, static_cast<float>(i / 512.0)));
    }

    void setSelectsPresetByNumber()
    {
        pdx3.set(13);
        QCOMPARE(pdx3.setIndex, 1);
        QCOMPARE(currentRow(), expectedPresets().at(1));

        pdx3.paramList[4][0] = 99.0F; // not read
        pdx3.set(64);
        QCOMPARE(pdx3.setIndex, 4);
        QCOMPARE(currentRow(), expectedPresets().at(4));

        pdx3.set(11);
        for (int i = 12; i <= 36; ++i) {
            pdx3.nextSet();
            QCOMPARE(pdx3.setIndex, i % 12);
            QCOMPARE(currentRow(), expectedPresets().at(i % 12));
        }
    }

    void setIgnoresNegativePresetNumbers()
    {
        pdx3.set(3);
        for (const int n : {-1, -11, -13, std::numeric_limits<int>::min()}) {
            pdx3.set(n);
            QCOMPARE(pdx3.setIndex, n % 12);
            QCOMPARE(currentRow(), expectedPresets().at(3));
        }
        pdx3.set(-12);
        QCOMPARE(pdx3.setIndex, 0);
        QCOMPARE(currentRow(), expectedPresets().at(0));
    }

    void setTruncatesMode_data()
    {
        constexpr int lowest = std::numeric_limits<int>::min();
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("mode");
        QTest::newRow("2.9") << 2.9F << 2;
        QTest::newRow("-0.5") << -0.5F << 0;
        QTest::newRow("-1.5") << -1.5F << -1;
        QTest::newRow("largest that fits") << 2147483520.0F << 2147483520;
        QTest::newRow("lowest that fits") << -2147483648.0F << lowest;
        QTest::newRow("2^31") << 2147483648.0F << lowest;
        QTest::newRow("-inf") << -infinity << lowest;
        QTest::newRow("nan") << notANumber << lowest;
    }

    void setTruncatesMode()
    {
        QFETCH(float, value);
        QFETCH(int, mode);
        pdx3.set(QVector<float>{1.0F, 2.0F, 3.0F, 0.1F, 0.2F, value});
        QCOMPARE(pdx3.colorMode, mode);
        QCOMPARE(snapshot().at(5), ::bitsOf(static_cast<float>(mode)));
        if (mode < 0 || mode >= Pendrix3D::colorModeCount) {
            QVERIFY(std::all_of(pdx3.colors.cbegin(), pdx3.colors.cend(),
                                [](const QColor &color) { return color == QColor(0, 0, 255); }));
        }
    }

    void setKeepsValuesBitForBit()
    {
        pdx3.set(QVector<float>{notANumber, -0.0F, 1e-45F, -1e38F, infinity, 3.99F, 77.0F});
        QCOMPARE(currentRow(), bitsOf({notANumber, -0.0F, 1e-45F, -1e38F, infinity, 3.0F}));
        QCOMPARE(snapshot(), currentRow());
        pdx3.set(0.1F, 0.2F, 0.3F, 0.4F, 0.5F, -7);
        QCOMPARE(currentRow(), bitsOf({0.1F, 0.2F, 0.3F, 0.4F, 0.5F, -7.0F}));
        QCOMPARE(snapshot(), currentRow());
    }

    void setIgnoresShortRows()
    {
        pdx3.set(2);
        for (int length = 0; length < 6; ++length) {
            pdx3.set(QVector<float>(length, 5.0F));
            QCOMPARE(currentRow(), expectedPresets().at(2));
        }
    }

    void setCopiesRow()
    {
        pdx3.set(pdx3.paramList.at(1));
        pdx3.paramList[1][0] = 99.0F;
        pdx3.next(0.0, 0.0);
        QCOMPARE(pdx3.freq1, 2.0F);
        pdx3.resetParamList();
        QCOMPARE(pdx3.paramList.size(), 64);
        QCOMPARE(bitsOf(pdx3.paramList.at(1)), expectedPresets().at(1));
        QCOMPARE(bitsOf(pdx3.paramList.at(63)), Row(6, 0));
    }

    void setParamsCopiesCurrentParameters()
    {
        pdx3.set(0);
        pdx3.freq2 = 9.0F;
        QCOMPARE(snapshot(), expectedPresets().at(0));
        pdx3.setParams();
        QCOMPARE(snapshot(), currentRow());
        QCOMPARE(pdx3.getParams(), &pdx3.params[0]);
    }

    void nextAdvancesTwoFrequencies()
    {
        pdx3.set(0);
        for (int i = 0; i < 2500; ++i)
            pdx3.next();
        // 2500 additions of 0.0004 in double, each rounded to float.
        QCOMPARE(currentRow(), Row({0x3FFFFBAC, 0x40000000, 0x4080015C, 0x3EEB851F, 0x3280D959, 0x3F800000}));
        QCOMPARE(snapshot(), currentRow());
        // Computed in float, these sums would be 0.
        pdx3.set(-0.0004F, 1.0F, -0.0004F, 0.0F, 0.0F, 0);
        pdx3.next();
        QCOMPARE(currentRow().mid(0, 3), bitsOf({0x1.638866p-37F, 1.0F, 0x1.638866p-37F}));
        pdx3.set(-0.1F, 1.0F, -0.0004F, 0.0F, 0.0F, 0);
        pdx3.next(0.1, 0.0004);
        QCOMPARE(currentRow().mid(0, 3), bitsOf({-0x1.99999ap-30F, 1.0F, 0x1.638866p-37F}));
        pdx3.set(0);
        QCOMPARE(currentRow(), expectedPresets().at(0));
    }

    void setRandomCallsRandSixTimes()
    {
        pdx3.set(7);
        const auto rows = pdx3.paramList;
        for (unsigned int seed = 1; seed <= 50; ++seed) {
            std::srand(seed);
            QVector<float> expected;
            for (const int bound : {100, 100, 100, 100, 100, 5})
                expected.append(static_cast<float>(std::rand() % bound));
            const int afterwards = std::rand();

            std::srand(seed);
            pdx3.setRandom();
            QCOMPARE(currentRow(), bitsOf(expected));
            QCOMPARE(snapshot(), bitsOf(expected));
            QCOMPARE(std::rand(), afterwards); // no more drawn, not seeded again
        }
        VERIFY_CURVE();
        QCOMPARE(pdx3.setIndex, 7);
        QCOMPARE(pdx3.paramList, rows);
    }

    void preset2StringListFormatsPresets()
    {
        const QStringList expected = {
            "1, 2, 3, 0.46, 1.5e-08, 1", "2, 3, 4, 0.25, 0, 2",        "1, 3, 1, 0.25, 1.5e-08, 4",
            "2, 1, 3, 0.37, 0, 2",       "2, 2, 11, 0.25, 1.5e-08, 2", "1, 1, 1.01, 0.25, 0.29, 0",
            "4, 4, 22, 0.25, 0, 4",      "1, 1, 4, 0.43, 1.5e-08, 3",  "1, 2, 0, 0.1, 0.3, 2",
            "6, 3, 2, 0.21, 0.3, 0",     "1, 2, -1, 0.1, 0.3, 2",      "6, -3, 2, 0.21, 0.3, 0",
        };
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German)); // has no effect, although its decimal separator is a comma
        pdx3.paramList[0][0] = 9.0F;
        pdx3.presets.append(QVector<float>());
        const QStringList lines = pdx3.preset2StringList();
        pdx3.presets.removeLast();
        pdx3.resetParamList();
        QLocale::setDefault(before);
        QCOMPARE(lines, expected + QStringList(QString(""))); // an empty row gives an empty line
    }

    void drawSetsColorAfterVertex()
    {
        pdx3.set(notANumber, 3.0F, infinity, 0.1F, 0.2F, 0);
        pdx3.points[7] = {-0.0F, 1e-45F, 1e38F};
        const QVector<OpenGLCall> calls = drawCalls();
        QCOMPARE(calls.size(), 2 + 2 * 16666);
        QCOMPARE(calls.first(), (OpenGLCall{"glBegin", {GL_LINE_STRIP}}));
        QCOMPARE(calls.last(), (OpenGLCall{"glEnd", {}}));
        QCOMPARE(calls.at(2), colorCall(0x0000FF));
        QCOMPARE(calls.at(2 * 16666), colorCall(0xFF0100));
        for (int i = 0; i < 16666; ++i) {
            const CurvePoint &point = pdx3.points.at(i);
            QVERIFY(calls.at(1 + 2 * i) == (OpenGLCall{"glVertex3f", {point.x, point.y, point.z}}));
            QVERIFY(calls.at(2 + 2 * i) == colorCall(pdx3.colors.at(i).rgb()));
        }
    }

    void drawUsesChangedColors()
    {
        pdx3.set(0);
        const QRgb before = pdx3.colors.at(6).rgb();
        // 16-bit components, other colour models and an invalid colour.
        pdx3.colors[2] = QColor::fromRgba64(1, 40000, 65534, 30001);
        pdx3.colors[3] = QColor::fromHsvF(0.5F, 1.0F, 1.0F, 0.2F);
        pdx3.colors[4] = QColor::fromCmyk(0, 255, 0, 0);
        pdx3.colors[5] = QColor();
        QVector<OpenGLCall> calls = drawCalls();
        QCOMPARE(calls.at(6), colorCall(1, 40000, 65534, 30001));
        QCOMPARE(calls.at(8), colorCall(0, 65535, 65535, 13107));
        QCOMPARE(calls.at(10), colorCall(65535, 0, 65535, 65535));
        QCOMPARE(calls.at(12), colorCall(0, 0, 0, 65535));
        QCOMPARE(calls.at(14), colorCall(before));

        // Through a pointer from before the pass, which keeps the storage.
        pdx3.set(0);
        QColor *const color = pdx3.colors.data();
        pdx3.next();
        color[5] = Qt::white;
        QCOMPARE(pdx3.colors.at(5), QColor(Qt::white));
        QCOMPARE(drawCalls().at(12), colorCall(0xFFFFFF));
    }

    void passKeepsCopiesOfListsUnchanged()
    {
        pdx3.set(0);
        const QVector<QColor> colors = pdx3.colors;
        const QVector<CurvePoint> points = pdx3.points;
        const QColor &color = colors.at(5);
        const quint32 x = ::bitsOf(points.at(5).x);
        pdx3.set(1);
        QCOMPARE(colors.at(5), color);
        QCOMPARE(::bitsOf(points.at(5).x), x);
        QVERIFY(pdx3.colors.at(5) != color && ::bitsOf(pdx3.points.at(5).x) != x);
    }

    void paletteTakesEffectInNextPass()
    {
        pdx3.set(0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 9);
        pdx3.palette[0] = 0x123456;
        QCOMPARE(drawCalls().at(2), colorCall(0x0000FF));
        pdx3.calcCoords();
        QCOMPARE(drawCalls().at(2), colorCall(0x123456));
        pdx3.palette[0] = 0x0000FF;
    }

    void drawIsLimitedByShortestList()
    {
        const QVector<OpenGLCall> empty = {{"glBegin", {GL_LINE_STRIP}}, {"glEnd", {}}};
        for (const int count : {0, -1}) {
            pdx3.set(0);
            pdx3.nPoints = count;
            QCOMPARE(drawCalls(), empty);
        }
        pdx3.set(0);
        pdx3.points.clear();
        QCOMPARE(drawCalls(), empty);
        pdx3.set(0);
        pdx3.colors.resize(3);
        QCOMPARE(drawCalls().size(), 2 + 2 * 3);
    }
};

QTEST_APPLESS_MAIN(Pendrix3DTest)
#include "Pendrix3DTest.moc"
