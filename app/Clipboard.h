#pragma once

class Pendrix3D;

/// Puts the parameter list of `engine` on the clipboard as text for a spreadsheet: 64 lines, each ended by a line feed,
/// of six numbers in the C locale with six significant digits, separated by tabs. A value that the list lacks is 0.
void copyParamsToClipboard(const Pendrix3D &engine);

/// Takes the clipboard's text into the parameter list of `engine`, from the first row on.
///
/// A line that holds six fields, separated by one tab or more, takes a row; any other line takes none. Lines end in a
/// line feed, a carriage return or both. A field that is no number (C locale, blanks around it allowed, within the
/// range of a float) leaves its cell as it is. At most 64 rows are taken, the others keep their values; what would lie
/// outside the list is dropped. The curve on screen does not change.
void pasteParamsFromClipboard(Pendrix3D &engine);
