#pragma once

#include <QByteArray>
#include <QVector>

/// A call of an OpenGL entry point: its name and its arguments, widened to double (exact for every type used) and with
/// the floats behind a pointer instead of the pointer.
struct OpenGLCall
{
    QByteArray name;
    QVector<double> arguments;
};

/// Compares names and the bits of arguments, so that -0 differs from 0; any NaN equals any other.
bool operator==(const OpenGLCall &a, const OpenGLCall &b);

/// Returns a readable form for QCOMPARE.
char *toString(const OpenGLCall &call);

/// Replaces the OpenGL library in programs that link it: the entry points record their calls and draw nothing. A
/// missing entry point is a linker error.
namespace FakeOpenGL {

/// Returns the calls since the last clear, in order.
const QVector<OpenGLCall> &calls();

/// Forgets the recorded calls but keeps their storage.
void clear();

/// Switches recording on, as at the start, or off.
void setRecording(bool on);

/// Called with the name and the arguments of a call, which are valid only during the call.
using Watcher = void (*)(const char *name, const double *arguments, std::size_t count);

/// Passes each call to `watcher` instead of recording it, for sequences that do not fit in memory. Null resumes
/// recording.
void setWatcher(Watcher watcher);

/// Returns the first of the recorded calls that differs from `expected`, as text; empty if all are equal.
QByteArray difference(const QVector<OpenGLCall> &expected);

} // namespace FakeOpenGL

/// Fails the test unless the recorded calls equal the expected ones.
#define COMPARE_CALLS(...) QCOMPARE(FakeOpenGL::difference(__VA_ARGS__), QByteArray())
