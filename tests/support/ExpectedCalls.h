#pragma once

#include "tests/support/FakeOpenGL.h"

#include <QByteArray>
#include <QVector>

/// A call as it ought to be. Arguments are compared by their bits, with a tolerance by their distance; any NaN is as
/// good as any other.
struct ExpectedCall
{
    QByteArray name;
    QVector<double> arguments;
    double tolerance = 0.0;
};

using ExpectedCalls = QVector<ExpectedCall>;

/// Says which call and which argument of it is the first that is not as expected; empty if all are.
QByteArray difference(const QVector<OpenGLCall> &calls, const ExpectedCalls &expected);

/// The same for as many floats of an array as are expected.
QByteArray difference(const float *array, const QVector<double> &expected, double tolerance = 0.0);

/// Fails the test unless the calls since the last clear are as expected.
#define COMPARE_CALLS(expected) QCOMPARE(difference(FakeOpenGL::calls(), expected), QByteArray())
