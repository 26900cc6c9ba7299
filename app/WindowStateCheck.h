#pragma once

#include <QByteArray>

/// Whether `state` is a layout of the main window as QMainWindow::saveState writes it: its two docks, each in its area,
/// and its toolbar in any area; sizes, positions and what is shown may have any values.
///
/// The toolkit takes areas and counts from the bytes as they are, and damaged ones end or hang the program.
bool isMainWindowStateCheck(const QByteArray &state);
