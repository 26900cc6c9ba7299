#pragma once

#include <QString>

/// An error that ends the export. The program prints it as `pendrix3d-export: problem: detail`.
///
/// Throughout the export, strings from outside (arguments, file names, system messages) hold one byte per character, so
/// that every byte survives in every locale; see prepareProcess.
struct ExportError
{
    static constexpr int failure = 1;    ///< error in a file, a curve or the output
    static constexpr int wrongUsage = 2; ///< error in the command line

    int exitStatus;
    QString problem;
    QString detail;
};
