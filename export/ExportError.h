#pragma once

#include <QString>

/// An error that ends the export. The program prints it as `pendrix3d-export: problem: detail`.
///
/// Throughout the export, strings from outside (arguments, file names, system messages) hold one byte per character, so
/// that every byte survives in every locale; see useByteStrings.
struct ExportError
{
    static constexpr int failure = 1;    ///< of file contents, curves or output
    static constexpr int wrongUsage = 2; ///< visible in the command line alone

    int exitStatus;
    QString problem;
    QString detail;
};
