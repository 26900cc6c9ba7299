#pragma once

#include <QByteArray>
#include <QVector>

/// A call of an OpenGL entry point: its name and its arguments, widened to double (exact for every type used).
struct OpenGLCall
{
    QByteArray name;
    QVector<double> arguments;
};

/// Equal names and equal argument bits, so that -0 differs from 0; any NaN equals any other.
bool operator==(const OpenGLCall &a, const OpenGLCall &b);

/// Readable form for QCOMPARE.
char *toString(const OpenGLCall &call);

/// Stands in for the OpenGL library in the programs that link it: the entry points record their calls and draw
/// nothing. An entry point that is missing here is an error of the linker.
namespace FakeOpenGL {

/// The calls since the last clear, in order.
const QVector<OpenGLCall> &calls();

/// Forgets the recorded calls but keeps their storage.
void clear();

/// Whether calls are recorded, at first true; else they do nothing at all.
void setRecording(bool on);

/// What is told of a call: its name and its arguments, which are gone afterwards.
using Watcher = void (*)(const char *name, const double *arguments, std::size_t count);

/// From now on `watcher` is told of each call as it comes, and none is recorded: for more calls than one wants to keep.
/// Null ends that.
void setWatcher(Watcher watcher);

} // namespace FakeOpenGL
