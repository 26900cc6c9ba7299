// OpenGL entry points that do nothing, in a separate file so that no compiler can remove their calls.

#include "tests/support/OpenGLEntryPoints.h"

#include <qopengl.h>

#define SILENT(name, floats, parameters, arguments)                                                                    \
    void APIENTRY name parameters                                                                                      \
    {                                                                                                                  \
        const auto ignore = [](auto...) {};                                                                            \
        ignore arguments;                                                                                              \
    }

extern "C" {
PENDRIX_OPENGL_ENTRY_POINTS(SILENT)
}
