// The drawing helpers' arrays: those that they return are array new's, and of the others nothing stays.

#include "view/OpenGL.h"

#include "tests/support/FakeOpenGL.h"
#include "tests/support/Sanitizer.h"

#include <QColor>
#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>
#include <vector>

namespace {

struct Balance
{
    long made = 0;
    long freed = 0;
};

bool counting = false;
Balance arrays;
Balance singles;
long threes = 0;          ///< arrays of three floats
std::size_t lastSize = 0; ///< of the array made last, in bytes

constexpr int lowest = std::numeric_limits<int>::min();

} // namespace

// Under AddressSanitizer the allocator stays its own, which tells the kinds of new from each other.
#ifndef PENDRIX_ADDRESS_SANITIZER

namespace {

void *allocate(std::size_t size, Balance &balance)
{
    balance.made += counting ? 1 : 0;
    if (void *memory = std::malloc(std::max<std::size_t>(size, 1)))
        return memory;
    throw std::bad_alloc();
}

void release(void *memory, Balance &balance)
{
    balance.freed += counting && memory ? 1 : 0;
    std::free(memory);
}

} // namespace

void *operator new(std::size_t size)
{
    return allocate(size, singles);
}

void *operator new[](std::size_t size)
{
    if (counting) {
        threes += size == 3 * sizeof(float) ? 1 : 0;
        lastSize = size;
    }
    return allocate(size, arrays);
}

void operator delete(void *memory) noexcept
{
    release(memory, singles);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept
{
    release(memory, singles);
}

void operator delete[](void *memory) noexcept
{
    release(memory, arrays);
}

void operator delete[](void *memory, std::size_t /*size*/) noexcept
{
    release(memory, arrays);
}

#endif

Q_DECLARE_METATYPE(std::function<float *(OpenGL &)>)
Q_DECLARE_METATYPE(std::function<void(OpenGL &)>)

class OpenGLArraysTest : public QObject
{
    Q_OBJECT

    OpenGL gl;

    template <typename Action>
    static void count(const Action &action)
    {
        arrays = {};
        singles = {};
        threes = 0;
        lastSize = 0;
        counting = true;
        action();
        counting = false;
    }

private slots:
    void initTestCase()
    {
#ifdef PENDRIX_ADDRESS_SANITIZER
        QSKIP("the sanitizer's allocator cannot be replaced; it reports leaks itself");
#endif
        FakeOpenGL::setRecording(false);
        gl.dodecahedronFace(0); // may make its texture coordinates at the first call, and keep them
    }

    void returnsNewArrays_data()
    {
        using Make = std::function<float *(OpenGL &)>;
        QTest::addColumn<Make>("make");
        QTest::addColumn<int>("floats");
        static std::array<float, 9> p = {0.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.0F, 1.0F, 0.0F};
        QTest::newRow("normalise") << Make([](OpenGL &helpers) { return helpers.normalise(1.0F, 2.0F, 3.0F); }) << 3;
        QTest::newRow("calcNormal") << Make([](OpenGL &helpers) {
            return helpers.calcNormal(p.data(), p.data() + 3, p.data() + 6);
        }) << 3;
        for (const int n : {lowest, -1, 0, 1, 2, 24}) {
            const int count = std::max(n, 0);
            QTest::addRow("textPolygon %d", n)
                << Make([n](OpenGL &helpers) { return helpers.textPolygon(n); }) << 2 * count;
            QTest::addRow("polygon %d", n)
                << Make([n](OpenGL &helpers) { return helpers.polygon(n, 1.0F, 1.0F); }) << 3 * count;
            QTest::addRow("grid %d", n) << Make([n](OpenGL &helpers) { return helpers.grid(n, n, 1.0F); })
                                        << 2 * count * count;
            QTest::addRow("ellipseCoords %d", n)
                << Make([n](OpenGL &helpers) { return helpers.ellipseCoords(0.0F, 0.0F, 1.0F, 1.0F, n); }) << 2 * count;
        }
    }

    void returnsNewArrays()
    {
        QFETCH(std::function<float *(OpenGL &)>, make);
        QFETCH(int, floats);
        float *array = nullptr;
        count([&] { array = make(gl); });
        QVERIFY(array != nullptr);
        QCOMPARE(arrays.made - arrays.freed, 1L);
        QCOMPARE(singles.made - singles.freed, 0L);
        QCOMPARE(lastSize, static_cast<std::size_t>(floats) * sizeof(float));
        delete[] array;
    }

    void drawsAndKeepsNothing_data()
    {
        using Draw = std::function<void(OpenGL &)>;
        QTest::addColumn<Draw>("draw");
        for (const int n : {lowest, -1, 0, 1, 2, 24}) {
            static std::vector<QColor> colors(576);
            QTest::addRow("sphere %d", n) << Draw([n](OpenGL &helpers) { helpers.sphere(1.0F, n, nullptr); });
            QTest::addRow("coloured sphere %d", n)
                << Draw([n](OpenGL &helpers) { helpers.sphere(1.0F, n, colors.data()); });
            QTest::addRow("sphereLine %d", n) << Draw([n](OpenGL &helpers) { helpers.sphereLine(1.0F, n); });
            QTest::addRow("sphereTextured %d", n) << Draw([n](OpenGL &helpers) { helpers.sphereTextured(1.0F, n); });
            QTest::addRow("circle %d", n) << Draw([n](OpenGL &helpers) { helpers.circle(nullptr, n, 1.0F); });
        }
        QTest::newRow("chrysanthemum") << Draw([](OpenGL &helpers) { helpers.chrysanthemum(); });
        QTest::newRow("ellipse") << Draw([](OpenGL &helpers) { helpers.ellipse(0.0F, 0.0F, 1.0F, 1.0F, 24); });
        QTest::newRow("textured cube") << Draw([](OpenGL &helpers) { helpers.cubeTextured(); });
        QTest::newRow("textured dodecahedron") << Draw([](OpenGL &helpers) { helpers.dodecahedronSolid(); });
    }

    void drawsAndKeepsNothing()
    {
        QFETCH(std::function<void(OpenGL &)>, draw);
        count([&] { draw(gl); });
        QCOMPARE(arrays.made - arrays.freed, 0L);
        QCOMPARE(singles.made - singles.freed, 0L);
    }

    void aSphereAllocatesItsVerticesOneByOne()
    {
        for (const int n : {0, 1, 2, 7}) {
            count([&] { gl.sphereLine(1.0F, n); });
            QCOMPARE(threes, long(n + 1) * (n + 1));
        }
    }
};

QTEST_APPLESS_MAIN(OpenGLArraysTest)
#include "OpenGLArraysTest.moc"
