#pragma once

class Pendrix3D;

/// Puts the parameter list of `engine` on the clipboard as text for a spreadsheet: 64 rows; see textOfRows.
void copyParamsToClipboard(const Pendrix3D &engine);

/// Reads the clipboard's text into the parameter list of `engine`, from the first row on.
///
/// Each line of six fields (see takeRow) fills a row; other lines are skipped. A field that is not a number leaves its
/// cell unchanged. At most 64 rows are read, and fields outside the list are dropped. The displayed curve does not
/// change.
void pasteParamsFromClipboard(Pendrix3D &engine);
