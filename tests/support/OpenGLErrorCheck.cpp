// To be preloaded into a program that draws: asks the OpenGL context for an error after each of our calls, and ends the
// program with the call's name if there is one.
//
// Between glBegin and glEnd nobody may ask; what went wrong there is found after glEnd. The context is also asked
// before each call, so that an error that the toolkit left, or a call that is not among these, does not get the name of
// ours. When the program ends, a line with the number of calls and of questions is added to the file that
// PENDRIX_OPENGL_REPORT names, if it does.

#include <GL/gl.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <type_traits>

namespace {

/// What was done in this run; reported when it ends.
struct Count
{
    Count() = default;
    ~Count()
    {
        const char *report = std::getenv("PENDRIX_OPENGL_REPORT");
        if (report && calls > 0)
            std::ofstream(report, std::ios::app) << calls << " calls, asked " << asked << " times\n";
    }
    Count(const Count &) = delete;
    Count &operator=(const Count &) = delete;

    long calls = 0;
    long asked = 0;
};

Count &count()
{
    static Count ofThisRun;
    return ofThisRun;
}

bool isBetweenBeginAndEnd = false;

void *entryPointBehindOurs(const char *name)
{
    void *const entryPoint = dlsym(RTLD_NEXT, name);
    if (!entryPoint) {
        static_cast<void>(std::fprintf(stderr, "OpenGL: there is no %s\n", name));
        std::abort();
    }
    return entryPoint;
}

/// Ends the program if the context has an error; `when` and `name` say at which call.
void ask(const char *when, const char *name)
{
    static const auto getError = reinterpret_cast<decltype(&glGetError)>(entryPointBehindOurs("glGetError"));
    if (isBetweenBeginAndEnd)
        return;
    ++count().asked;
    const GLenum error = getError();
    if (error == GL_NO_ERROR)
        return;
    static_cast<void>(std::fprintf(stderr, "OpenGL error 0x%04X %s %s\n", error, when, name));
    std::abort();
}

/// The library's entry point of `name`, with the questions around it.
template <auto entryPoint>
struct Checked
{
    const char *name;

    template <auto other>
    static constexpr bool is = std::is_same_v<std::integral_constant<decltype(entryPoint), entryPoint>,
                                              std::integral_constant<decltype(other), other>>;

    template <typename... Arguments>
    void operator()(Arguments... arguments) const
    {
        static const auto behind = reinterpret_cast<decltype(entryPoint)>(entryPointBehindOurs(name));
        ++count().calls;
        ask("before", name);
        behind(arguments...);
        if (is<&glBegin> || is<&glEnd>)
            isBetweenBeginAndEnd = is<&glBegin>;
        ask("in", name);
    }
};

#define CHECKED(name)                                                                                                  \
    Checked<&(name)>                                                                                                   \
    {                                                                                                                  \
#name                                                                                                          \
    }

} // namespace

extern "C" {

void APIENTRY glBegin(GLenum mode)
{
    CHECKED(glBegin)(mode);
}

void APIENTRY glEnd()
{
    CHECKED(glEnd)();
}

void APIENTRY glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    CHECKED(glVertex3f)(x, y, z);
}

void APIENTRY glVertex3fv(const GLfloat *v)
{
    CHECKED(glVertex3fv)(v);
}

void APIENTRY glVertex2f(GLfloat x, GLfloat y)
{
    CHECKED(glVertex2f)(x, y);
}

void APIENTRY glNormal3fv(const GLfloat *v)
{
    CHECKED(glNormal3fv)(v);
}

void APIENTRY glTexCoord2f(GLfloat s, GLfloat t)
{
    CHECKED(glTexCoord2f)(s, t);
}

void APIENTRY glTexCoord2fv(const GLfloat *v)
{
    CHECKED(glTexCoord2fv)(v);
}

void APIENTRY glColor3f(GLfloat red, GLfloat green, GLfloat blue)
{
    CHECKED(glColor3f)(red, green, blue);
}

void APIENTRY glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha)
{
    CHECKED(glColor4f)(red, green, blue, alpha);
}

void APIENTRY glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha)
{
    CHECKED(glClearColor)(red, green, blue, alpha);
}

void APIENTRY glClear(GLbitfield buffers)
{
    CHECKED(glClear)(buffers);
}

void APIENTRY glFlush()
{
    CHECKED(glFlush)();
}

void APIENTRY glEnable(GLenum capability)
{
    CHECKED(glEnable)(capability);
}

void APIENTRY glDepthFunc(GLenum function)
{
    CHECKED(glDepthFunc)(function);
}

void APIENTRY glHint(GLenum target, GLenum mode)
{
    CHECKED(glHint)(target, mode);
}

void APIENTRY glShadeModel(GLenum model)
{
    CHECKED(glShadeModel)(model);
}

void APIENTRY glLightModeli(GLenum name, GLint value)
{
    CHECKED(glLightModeli)(name, value);
}

void APIENTRY glLightfv(GLenum light, GLenum name, const GLfloat *v)
{
    CHECKED(glLightfv)(light, name, v);
}

void APIENTRY glMaterialfv(GLenum face, GLenum name, const GLfloat *v)
{
    CHECKED(glMaterialfv)(face, name, v);
}

void APIENTRY glMaterialf(GLenum face, GLenum name, GLfloat value)
{
    CHECKED(glMaterialf)(face, name, value);
}

void APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    CHECKED(glViewport)(x, y, width, height);
}

void APIENTRY glMatrixMode(GLenum mode)
{
    CHECKED(glMatrixMode)(mode);
}

void APIENTRY glLoadIdentity()
{
    CHECKED(glLoadIdentity)();
}

void APIENTRY glFrustum(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear, GLdouble zFar)
{
    CHECKED(glFrustum)(left, right, bottom, top, zNear, zFar);
}

void APIENTRY glTranslatef(GLfloat x, GLfloat y, GLfloat z)
{
    CHECKED(glTranslatef)(x, y, z);
}

void APIENTRY glRotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z)
{
    CHECKED(glRotatef)(angle, x, y, z);
}

} // extern "C"
