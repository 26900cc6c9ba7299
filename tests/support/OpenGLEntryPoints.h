#pragma once

/// The OpenGL entry points that the program calls: X(name, floats, parameters, arguments). `floats` is the number of
/// floats that a pointer among the parameters points to; the program sets lights and materials by colours and
/// positions only, which are four.
// clang-format off
#define PENDRIX_OPENGL_ENTRY_POINTS(X)                                                                                 \
    X(glBegin, 0, (GLenum mode), (mode))                                                                               \
    X(glEnd, 0, (), ())                                                                                                \
    X(glVertex3f, 0, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                                     \
    X(glVertex3fv, 3, (const GLfloat *v), (v))                                                                         \
    X(glVertex2f, 0, (GLfloat x, GLfloat y), (x, y))                                                                   \
    X(glNormal3fv, 3, (const GLfloat *v), (v))                                                                         \
    X(glTexCoord2f, 0, (GLfloat s, GLfloat t), (s, t))                                                                 \
    X(glTexCoord2fv, 2, (const GLfloat *v), (v))                                                                       \
    X(glColor3f, 0, (GLfloat red, GLfloat green, GLfloat blue), (red, green, blue))                                    \
    X(glColor4f, 0, (GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha), (red, green, blue, alpha))              \
    X(glClearColor, 0, (GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha), (red, green, blue, alpha))       \
    X(glClear, 0, (GLbitfield buffers), (buffers))                                                                     \
    X(glFlush, 0, (), ())                                                                                              \
    X(glEnable, 0, (GLenum capability), (capability))                                                                  \
    X(glDepthFunc, 0, (GLenum function), (function))                                                                   \
    X(glHint, 0, (GLenum target, GLenum mode), (target, mode))                                                         \
    X(glShadeModel, 0, (GLenum model), (model))                                                                        \
    X(glLightModeli, 0, (GLenum name, GLint value), (name, value))                                                     \
    X(glLightfv, 4, (GLenum light, GLenum name, const GLfloat *v), (light, name, v))                                   \
    X(glMaterialfv, 4, (GLenum face, GLenum name, const GLfloat *v), (face, name, v))                                  \
    X(glMaterialf, 0, (GLenum face, GLenum name, GLfloat value), (face, name, value))                                  \
    X(glViewport, 0, (GLint x, GLint y, GLsizei width, GLsizei height), (x, y, width, height))                         \
    X(glMatrixMode, 0, (GLenum mode), (mode))                                                                          \
    X(glLoadIdentity, 0, (), ())                                                                                       \
    X(glFrustum, 0, (GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear, GLdouble zFar),     \
      (left, right, bottom, top, zNear, zFar))                                                                         \
    X(glTranslatef, 0, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                                   \
    X(glRotatef, 0, (GLfloat angle, GLfloat x, GLfloat y, GLfloat z), (angle, x, y, z))
// clang-format on
