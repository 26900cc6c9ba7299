#pragma once

#include <QByteArray>
#include <QRect>
#include <QVector>

/// Returns whether `state` is a layout of the main window as QMainWindow::saveState writes it, with the curve's dock
/// visible: the two docks, each in its area, and the toolbar in any area. Sizes, positions and the visibility of the
/// table's dock and of the toolbar may have any values.
///
/// QMainWindow::restoreState crashes or hangs on damaged areas and counts, and the user could not show a hidden curve
/// again.
bool isUsableWindowState(const QByteArray &state);

/// Returns whether `geometry`, written by QWidget::saveGeometry, has valid rectangles and enough of the title bar on
/// one of `screens` for the pointer to grab it. `screens` are available geometries.
bool isUsableGeometry(const QByteArray &geometry, const QVector<QRect> &screens);
