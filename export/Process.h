#pragma once

#include "export/ExportError.h"

#include <QByteArray>
#include <QStringList>

/// Makes the process independent of its environment. Call before opening any file. Afterwards:
/// - closed standard streams are unusable, and no file opened later has the descriptor of a standard stream;
/// - a write to a closed pipe or beyond the file size limit fails instead of raising a signal;
/// - Qt prints no warnings;
/// - strings from outside are decoded in the same way in every locale; see ExportError.
void prepareProcess();

/// Returns the arguments of `main`. Throws an ExportError if one of them cannot be decoded.
QStringList argumentsOf(int argc, char *argv[]);

/// Prints `message` on standard output. Throws an ExportError if that fails.
void printMessage(const QString &message);

/// Writes `content` to standard output. Throws an ExportError if that fails.
void printContent(const QByteArray &content);

/// Prints a warning on standard error, as printError prints errors.
void printWarning(const QString &text);

/// Prints `error` on standard error, in one line and without control characters.
void printError(const ExportError &error);
