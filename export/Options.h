#pragma once

#include "export/Formats.h"
#include "export/Page.h"
#include "export/RowSource.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

/// A parsed command line.
struct Options
{
    QString message; ///< text to print instead of an export; empty unless --help or --version is given
    QString file;    ///< "-" is standard output
    const Format *format = nullptr;
    RowSource row;
    int firstFrame = 0;
    int frameCount = 0; ///< 0: one frame, to `file`; otherwise numbered files
    int frameStep = 1;  ///< frames of the animation from file to file
    QColor color;       ///< invalid for the engine's colours
    Page page;          ///< of the first frame
    std::optional<double> margin;
    std::array<double, 3> turn = {}; ///< about x, y and z in degrees, less than a full turn
    std::array<double, 3> turnStep = {};

    /// Returns the rotation of frame `index`, from 0.
    Turn turnOfFrame(int index) const;
};

/// Parses `arguments`, which start with the program's name. Throws an ExportError with the status wrongUsage if they
/// are invalid. Opens no file.
Options parseOptions(const QStringList &arguments);

/// Returns the path of frame `number`: `name-00042.ext` for the path `name.ext` and frame 42.
QString numberedPath(const QString &path, int number);
