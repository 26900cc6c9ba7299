#pragma once

#include <QString>
#include <QVector>

/// The parameter row to export.
struct RowSource
{
    enum Kind {
        Preset,   ///< built-in preset `number`
        Settings, ///< row `number` of the settings file
        Text,     ///< row `number` of the text file `file`; "-" is standard input
        Values,   ///< `values`
    };
    Kind kind = Preset;
    int number = 1; ///< from 1
    QString file;
    QVector<float> values;
};

/// Returns the row of `source`. Reads text up to its end, also from a pipe or a terminal. Throws an ExportError if the
/// text cannot be read, exceeds 256 MiB, or has no such row of six finite numbers. Settings without a valid list of
/// rows have the initial rows of the application.
QVector<float> rowOf(const RowSource &source);
