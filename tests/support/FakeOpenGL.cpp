#include "tests/support/FakeOpenGL.h"

#include "tests/support/FloatBits.h"
#include "tests/support/OpenGLEntryPoints.h"

#include <QtTest>
#include <qopengl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>

namespace {

bool recording = true;
FakeOpenGL::Watcher watching = nullptr;

QVector<OpenGLCall> &recorded()
{
    static QVector<OpenGLCall> calls;
    return calls;
}

template <int floats, typename... Arguments>
void record(const char *name, Arguments... arguments)
{
    std::array<double, sizeof...(arguments) + floats + 1> values = {};
    std::size_t count = 0;
    [[maybe_unused]] const auto add = [&](auto argument) { // unused without arguments
        if constexpr (std::is_pointer_v<decltype(argument)>) {
            for (int k = 0; k < floats; ++k)
                values[count++] = double(argument[k]);
        } else {
            values[count++] = double(argument);
        }
    };
    (add(arguments), ...);

    if (watching) {
        watching(name, values.data(), count);
    } else if (recording) {
        OpenGLCall call{QByteArray::fromRawData(name, int(qstrlen(name))), {}};
        std::copy_n(values.begin(), count, std::back_inserter(call.arguments));
        recorded().append(call);
    }
}

/// Returns call `i` of `calls` as text.
QByteArray textOf(const QVector<OpenGLCall> &calls, int i)
{
    return i < calls.size() ? std::unique_ptr<char[]>(toString(calls.at(i))).get() : "none";
}

} // namespace

bool operator==(const OpenGLCall &a, const OpenGLCall &b)
{
    return a.name == b.name && std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(),
                                          b.arguments.end(), sameFloat<double>);
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

QByteArray FakeOpenGL::difference(const QVector<OpenGLCall> &expected)
{
    const QVector<OpenGLCall> &calls = recorded();
    if (calls == expected)
        return {};
    int i = 0;
    while (i < calls.size() && i < expected.size() && calls.at(i) == expected.at(i))
        ++i;
    return "call " + QByteArray::number(i) + ": " + textOf(calls, i) + ", expected " + textOf(expected, i);
}

#define FAKE(name, floats, parameters, arguments)                                                                      \
    void APIENTRY name parameters                                                                                      \
    {                                                                                                                  \
        const auto recordCall = [](auto... values) { record<floats>(#name, values...); };                              \
        recordCall arguments;                                                                                          \
    }

extern "C" {
PENDRIX_OPENGL_ENTRY_POINTS(FAKE)
}
