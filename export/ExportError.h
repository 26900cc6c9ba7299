#pragma once

#include <QString>

/// An error that ends the export. The program prints it as `pendrix3d-export: problem: detail`.
///
/// Throughout the export, strings from outside (arguments, file names, system messages) are in the encoding of
/// QString::fromLocal8Bit. With Qt 5, prepareProcess makes that one byte per character, so that every byte survives in
/// every locale. With Qt 6, it is UTF-8, and other file names cannot be opened.
struct ExportError
{
    static constexpr int failure = 1;    ///< error in a file, a curve or the output
    static constexpr int wrongUsage = 2; ///< error in the command line

    int exitStatus;
    QString problem;
    QString detail;
};

/// Returns an error in a file, a curve or the output.
inline ExportError failure(const QString &problem, const QString &detail)
{
    return {ExportError::failure, problem, detail};
}

/// Returns an error in the command line.
inline ExportError wrongUsage(const QString &problem, const QString &detail)
{
    return {ExportError::wrongUsage, problem, detail};
}
