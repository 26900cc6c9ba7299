#include "tests/support/FakeOpenGL.h"

#include "tests/support/FloatBits.h"

#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace {

bool recording = true;
FakeOpenGL::Watcher watching = nullptr;

QVector<OpenGLCall> &recorded()
{
    static QVector<OpenGLCall> calls;
    return calls;
}

void record(const char *name, std::initializer_list<double> arguments)
{
    if (watching)
        watching(name, arguments.begin(), arguments.size());
    else if (recording)
        recorded().append({QByteArray::fromRawData(name, static_cast<int>(std::strlen(name))), arguments});
}

} // namespace

bool operator==(const OpenGLCall &a, const OpenGLCall &b)
{
    return a.name == b.name && a.arguments.size() == b.arguments.size() &&
           std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(), sameFloat<double>);
}

char *toString(const OpenGLCall &call)
{
    QByteArray text = call.name + '(';
    for (int i = 0; i < call.arguments.size(); ++i)
        text += (i ? ", " : "") + QByteArray::number(call.arguments.at(i), 'g', 17);
    return qstrdup((text + ')').constData());
}

const QVector<OpenGLCall> &FakeOpenGL::calls()
{
    return recorded();
}

void FakeOpenGL::clear()
{
    recorded().resize(0);
}

void FakeOpenGL::setRecording(bool on)
{
    recording = on;
}

void FakeOpenGL::setWatcher(Watcher watcher)
{
    watching = watcher;
}

extern "C" {

void APIENTRY glBegin(GLenum mode)
{
    record("glBegin", {double(mode)});
}

void APIENTRY glEnd()
{
    record("glEnd", {});
}

void APIENTRY glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    record("glVertex3f", {double(x), double(y), double(z)});
}

void APIENTRY glVertex3fv(const GLfloat *v)
{
    record("glVertex3fv", {double(v[0]), double(v[1]), double(v[2])});
}

void APIENTRY glVertex2f(GLfloat x, GLfloat y)
{
    record("glVertex2f", {double(x), double(y)});
}

void APIENTRY glNormal3fv(const GLfloat *v)
{
    record("glNormal3fv", {double(v[0]), double(v[1]), double(v[2])});
}

void APIENTRY glTexCoord2f(GLfloat s, GLfloat t)
{
    record("glTexCoord2f", {double(s), double(t)});
}

void APIENTRY glTexCoord2fv(const GLfloat *v)
{
    record("glTexCoord2fv", {double(v[0]), double(v[1])});
}

void APIENTRY glColor3f(GLfloat red, GLfloat green, GLfloat blue)
{
    record("glColor3f", {double(red), double(green), double(blue)});
}

void APIENTRY glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha)
{
    record("glColor4f", {double(red), double(green), double(blue), double(alpha)});
}

void APIENTRY glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha)
{
    record("glClearColor", {double(red), double(green), double(blue), double(alpha)});
}

void APIENTRY glClear(GLbitfield buffers)
{
    record("glClear", {double(buffers)});
}

void APIENTRY glFlush()
{
    record("glFlush", {});
}

void APIENTRY glEnable(GLenum capability)
{
    record("glEnable", {double(capability)});
}

void APIENTRY glDepthFunc(GLenum function)
{
    record("glDepthFunc", {double(function)});
}

void APIENTRY glHint(GLenum target, GLenum mode)
{
    record("glHint", {double(target), double(mode)});
}

void APIENTRY glShadeModel(GLenum model)
{
    record("glShadeModel", {double(model)});
}

void APIENTRY glLightModeli(GLenum name, GLint value)
{
    record("glLightModeli", {double(name), double(value)});
}

// Of the lights' and the materials' values only colours and positions are asked for, which are fours.

void APIENTRY glLightfv(GLenum light, GLenum name, const GLfloat *v)
{
    record("glLightfv", {double(light), double(name), double(v[0]), double(v[1]), double(v[2]), double(v[3])});
}

void APIENTRY glMaterialfv(GLenum face, GLenum name, const GLfloat *v)
{
    record("glMaterialfv", {double(face), double(name), double(v[0]), double(v[1]), double(v[2]), double(v[3])});
}

void APIENTRY glMaterialf(GLenum face, GLenum name, GLfloat value)
{
    record("glMaterialf", {double(face), double(name), double(value)});
}

void APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    record("glViewport", {double(x), double(y), double(width), double(height)});
}

void APIENTRY glMatrixMode(GLenum mode)
{
    record("glMatrixMode", {double(mode)});
}

void APIENTRY glLoadIdentity()
{
    record("glLoadIdentity", {});
}

void APIENTRY glFrustum(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble zNear, GLdouble zFar)
{
    record("glFrustum", {left, right, bottom, top, zNear, zFar});
}

void APIENTRY glTranslatef(GLfloat x, GLfloat y, GLfloat z)
{
    record("glTranslatef", {double(x), double(y), double(z)});
}

void APIENTRY glRotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z)
{
    record("glRotatef", {double(angle), double(x), double(y), double(z)});
}

} // extern "C"
