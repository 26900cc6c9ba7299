#pragma once

#include "export/Options.h"

/// Exports the row and the frames that `options` select. Throws an ExportError if reading the row, computing a curve or
/// writing a file fails. Keeps the files of earlier frames and leaves no partial file.
void exportCurves(const Options &options);
