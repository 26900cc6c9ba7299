#pragma once

#include "export/Options.h"

/// Exports what `options` describe. Throws an ExportError if a row, a curve or a file is wrong; finished files stay,
/// and an unfinished one leaves nothing behind.
void exportCurves(const Options &options);
