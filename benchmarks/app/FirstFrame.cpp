// Interposer for glXSwapBuffers: start-and-frames.sh preloads it into a program to measure its frames. Writes one line
// to the file that FIRST_FRAME_REPORT names:
//     seconds from FIRST_FRAME_START to the first frame, processor seconds (user and system, all threads) until then,
//     resident kB then,
//     frames of the measured span, its seconds, processor seconds in it,
//     resident kB at its end
// FIRST_FRAME_START is the start time of the program in seconds since the epoch.

#include <GL/glx.h>

#include <dlfcn.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

namespace {

constexpr double settling = 1.0;   // seconds from the first frame to the span
constexpr double spanLength = 5.0; // seconds

double secondsOf(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Returns the process's resident memory in kB, counted page by page: the cheaper VmRSS lags behind.
long residentMemory()
{
    std::ifstream sums("/proc/self/smaps_rollup");
    std::string word;
    long kilobytes = 0;
    while (sums >> word && word != "Rss:") {
    }
    sums >> kilobytes;
    return kilobytes;
}

const char *setting(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

/// Measures the time to the first frame and a span of later frames.
class Watch
{
public:
    /// Records a frame. Reports once the span has ended.
    void frameShown()
    {
        if (reported)
            return;
        const double now = secondsOf(CLOCK_MONOTONIC);
        if (firstAt == 0.0) {
            untilFirst = secondsOf(CLOCK_REALTIME) - std::strtod(setting("FIRST_FRAME_START"), nullptr);
            processorAtFirst = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
            residentAtFirst = residentMemory();
            firstAt = now;
        } else if (spanFrom == 0.0) {
            if (now - firstAt >= settling) {
                spanFrom = now;
                processorFrom = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
            }
        } else {
            ++frames;
            if (now - spanFrom >= spanLength)
                report(now);
        }
    }

private:
    void report(double now)
    {
        const double processor = secondsOf(CLOCK_PROCESS_CPUTIME_ID) - processorFrom;
        std::ofstream(setting("FIRST_FRAME_REPORT"))
            << untilFirst << ' ' << processorAtFirst << ' ' << residentAtFirst << ' ' << frames << ' ' << now - spanFrom
            << ' ' << processor << ' ' << residentMemory() << '\n';
        reported = true;
    }

    double firstAt = 0.0;
    double untilFirst = 0.0;
    double processorAtFirst = 0.0;
    long residentAtFirst = 0;
    double spanFrom = 0.0;
    double processorFrom = 0.0;
    int frames = 0;
    bool reported = false;
};

} // namespace

/// Calls the library's glXSwapBuffers and records the frame.
extern "C" void glXSwapBuffers(Display *dpy, GLXDrawable drawable)
{
    using Swap = void (*)(Display *, GLXDrawable);
    static const auto swap = reinterpret_cast<Swap>(dlsym(RTLD_NEXT, "glXSwapBuffers"));
    static Watch watch;
    if (!swap)
        std::abort();
    swap(dpy, drawable);
    watch.frameShown();
}
