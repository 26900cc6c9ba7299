// Counts the allocations during frames, once the engine's lists have grown.

#include "engine/Pendrix3D.h"

#include "tests/support/FakeOpenGL.h"
#include "tests/support/Sanitizer.h"

#include <QtTest>

#include <cstdlib>

namespace {

long allocations = 0;

} // namespace

// AddressSanitizer's allocator calls a hook; otherwise these functions replace those of libc.
#ifdef PENDRIX_ADDRESS_SANITIZER

extern "C" int __sanitizer_install_malloc_and_free_hooks( // NOLINT(*-reserved-identifier,cert-dcl*)
    void (*allocated)(const volatile void *, std::size_t), void (*released)(const volatile void *));

namespace {

void countAllocation(const volatile void * /*memory*/, std::size_t /*size*/)
{
    ++allocations;
}

void ignoreRelease(const volatile void * /*memory*/) {}

const int hooksInstalled = __sanitizer_install_malloc_and_free_hooks(countAllocation, ignoreRelease);

} // namespace

#else

// NOLINTBEGIN(*-reserved-identifier,cert-dcl*,readability-inconsistent-declaration-parameter-name)
extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}

void *realloc(void *memory, std::size_t size)
{
    ++allocations;
    return __libc_realloc(memory, size);
}

} // extern "C"
  // NOLINTEND(*-reserved-identifier,cert-dcl*,readability-inconsistent-declaration-parameter-name)

#endif

class AllocationTest : public QObject
{
    Q_OBJECT

private slots:
    void counterSeesAllocations()
    {
        const long before = allocations;
        const QVector<float> allocated(1000, 1.0F);
        QVERIFY(allocated.size() == 1000 && allocations > before);
    }

    void framesAllocateNothingIfListsAreOnlyRead()
    {
        FakeOpenGL::setRecording(false);
        QVector<QVector<float>> rows;
        for (int mode = -1; mode <= Pendrix3D::colorModeCount; ++mode)
            rows.append({1.0F, 2.0F, 3.0F, 0.1F, 0.2F, static_cast<float>(mode)});
        const CurvePoint *const points = pdx3.points.data();
        const QColor *const colors = pdx3.colors.data();

        const long before = allocations;
        bool sameStorage = true;
        int sum = 0;
        for (int frame = 0; frame < 100; ++frame) {
            if (frame % 5 == 0)
                pdx3.set(rows.at(frame / 5 % rows.size()));
            pdx3.step = frame % 10 < 3 ? 6e-3F : 6e-5F; // shorter for a while
            pdx3.draw();
            pdx3.next();
            // Non-const access, which would detach a shared list.
            sum += pdx3.colors[0].red() + static_cast<int>(pdx3.points[0].x);
            for (const QColor &color : pdx3.colors) // clazy:exclude=range-loop-detach
                sum += color.green();
            sameStorage = sameStorage && pdx3.points.data() == points && pdx3.colors.data() == colors;
        }
        const long after = allocations;
        QCOMPARE(after - before, 0L);
        QVERIFY(sameStorage && sum > 0);
    }
};

QTEST_APPLESS_MAIN(AllocationTest)
#include "AllocationTest.moc"
