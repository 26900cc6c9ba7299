#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <QVector>

enum class Format { Png, Svg, Pdf, Ply, Csv };

/// Rotations of the curve in 1/16 degree, 0 to 5759; see Camera.h.
struct Turn
{
    int x = 0;
    int y = 0;
    int z = 0;
};

/// The page that a curve is drawn on. Lengths are in pixels for PNG, in millimetres for SVG and PDF.
struct Page
{
    double width = 0.0;
    double height = 0.0;
    double lineWidth = 0.0;
    QColor background; ///< invalid for a transparent page
    Turn turn;
};

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

/// A parsed command line.
struct Options
{
    QString message; ///< text to print instead of an export; empty unless --help or --version is given
    QString file;
    Format format = Format::Png;
    RowSource row;
    int firstFrame = 0;
    int frameCount = 0; ///< 0: one frame, to `file`; otherwise numbered files
    QColor color;       ///< invalid for the engine's colours
    Page page;
};

/// Parses `arguments`, which start with the program's name. Throws an ExportError with the status wrongUsage if they
/// are invalid. Opens no file.
Options parseOptions(const QStringList &arguments);

/// Returns the path of frame `number`: `name-00042.ext` for the path `name.ext` and frame 42.
QString numberedPath(const QString &path, int number);
