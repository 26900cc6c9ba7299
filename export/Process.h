#pragma once

#include "export/ExportError.h"

#include <QStringList>

/// Makes the process independent of its environment, before it opens any file:
/// - a standard stream that is closed stays unusable, so that no file that is opened later takes its number;
/// - a write to a closed pipe or beyond a limit fails instead of ending the process;
/// - Qt prints no warnings;
/// - strings from outside hold one byte per character (see ExportError) in every locale.
void prepareProcess();

/// Returns the arguments of `main`, one byte per character.
QStringList argumentsOf(int argc, char *argv[]);

/// Prints `message` on standard output. Throws an ExportError if that is impossible.
void printMessage(const QString &message);

/// Prints `error` on standard error, in one line and without control characters.
void printError(const ExportError &error);
