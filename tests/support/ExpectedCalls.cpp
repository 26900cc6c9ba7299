#include "tests/support/ExpectedCalls.h"

#include <cmath>

namespace {

bool same(double value, double expected, double tolerance)
{
    if (std::isnan(expected) || std::isnan(value))
        return std::isnan(expected) && std::isnan(value);
    if (tolerance > 0.0)
        return value == expected || std::abs(value - expected) <= tolerance; // equal infinities have no distance
    return value == expected && std::signbit(value) == std::signbit(expected);
}

QByteArray figure(double value)
{
    return QByteArray::number(value, 'g', 17);
}

/// The argument that is not as expected, or -1.
int firstDifference(const QVector<double> &values, const QVector<double> &expected, double tolerance)
{
    for (int i = 0; i < expected.size(); ++i) {
        if (!same(values.at(i), expected.at(i), tolerance))
            return i;
    }
    return -1;
}

} // namespace

QByteArray difference(const QVector<OpenGLCall> &calls, const ExpectedCalls &expected)
{
    for (int i = 0; i < calls.size() && i < expected.size(); ++i) {
        const OpenGLCall &call = calls.at(i);
        const ExpectedCall &other = expected.at(i);
        const QByteArray place = "call " + QByteArray::number(i) + ": " + call.name;
        if (call.name != other.name)
            return place + ", expected " + other.name;
        if (call.arguments.size() != other.arguments.size())
            return place + " with " + QByteArray::number(call.arguments.size()) + " arguments, expected " +
                   QByteArray::number(other.arguments.size());
        const int k = firstDifference(call.arguments, other.arguments, other.tolerance);
        if (k >= 0)
            return place + ", argument " + QByteArray::number(k) + ": " + figure(call.arguments.at(k)) + ", expected " +
                   figure(other.arguments.at(k));
    }
    if (calls.size() != expected.size())
        return QByteArray::number(calls.size()) + " calls, expected " + QByteArray::number(expected.size());
    return {};
}

QByteArray difference(const float *array, const QVector<double> &expected, double tolerance)
{
    QVector<double> values;
    for (int i = 0; i < expected.size(); ++i)
        values.append(double(array[i]));
    const int k = firstDifference(values, expected, tolerance);
    if (k < 0)
        return {};
    return "element " + QByteArray::number(k) + ": " + figure(values.at(k)) + ", expected " + figure(expected.at(k));
}
