// Preload into a program that draws: calls glGetError around each of the program's OpenGL calls, and aborts with the
// name of the call if there is an error.
//
// glGetError is not allowed between glBegin and glEnd, so an error there is reported for glEnd. The check before each
// call keeps errors of Qt, or of calls that are not in OpenGLEntryPoints.h, from being reported for the next call.

#include "tests/support/OpenGLEntryPoints.h"

#include <GL/gl.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

bool isBetweenBeginAndEnd = false;

/// Returns the OpenGL library's function `name`.
void *libraryFunction(const char *name)
{
    void *const function = dlsym(RTLD_NEXT, name);
    if (!function) {
        static_cast<void>(std::fprintf(stderr, "OpenGL: missing function: %s\n", name));
        std::abort();
    }
    return function;
}

/// Aborts if the context has an error. Reports it as an error `when` (before, in) the call `name`.
void check(const char *when, const char *name)
{
    static const auto getError = reinterpret_cast<decltype(&glGetError)>(libraryFunction("glGetError"));
    if (isBetweenBeginAndEnd)
        return;
    const GLenum error = getError();
    if (error == GL_NO_ERROR)
        return;
    static_cast<void>(std::fprintf(stderr, "OpenGL error 0x%04X %s %s\n", error, when, name));
    std::abort();
}

/// Calls the library's function `name`, whose type is that of `entryPoint`, between two checks.
template <auto entryPoint, typename... Arguments>
void callChecked(const char *name, Arguments... arguments)
{
    static const auto function = reinterpret_cast<decltype(entryPoint)>(libraryFunction(name));
    check("before", name);
    function(arguments...);
    const std::string_view called(name);
    if (called == "glBegin" || called == "glEnd")
        isBetweenBeginAndEnd = called == "glBegin";
    check("in", name);
}

} // namespace

#define CHECK(name, floats, parameters, arguments)                                                                     \
    void APIENTRY name parameters                                                                                      \
    {                                                                                                                  \
        const auto call = [](auto... values) { callChecked<&(name)>(#name, values...); };                              \
        call arguments;                                                                                                \
    }

extern "C" {
PENDRIX_OPENGL_ENTRY_POINTS(CHECK)
}
