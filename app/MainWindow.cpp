#include "app/MainWindow.h"

#include "app/Clipboard.h"
#include "app/Settings.h"
#include "app/SettingsFormat.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "ui_MainWindow.h"

#include <QFile>
#include <QGuiApplication>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScreen>

#include <algorithm>

namespace {

/// The largest accepted column width in pixels, wider than any screen. Larger values are treated as damage.
constexpr int maxColumnWidth = 20000;

/// Returns whether `state` is a layout of the main window as QMainWindow::saveState writes it, with the curve's dock
/// visible: the two docks, each in its area, and the toolbar in any area. Sizes, positions and the visibility of the
/// table's dock and of the toolbar may have any values.
///
/// QMainWindow::restoreState crashes or hangs on damaged areas and counts, and the user could not show a hidden curve
/// again.
bool isUsableWindowState(const QByteArray &state)
{
    // In hexadecimal, with the names in UTF-16.
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        "000000ff00000000fd00000002"                                         // version 0, two dock areas:
        "00000000.{16}fc0[12]00000001fb"                                     // left, its size; one dock:
        "000000140064006f0063006b0050006100720061006d00730[018].{32}"        // "dockParams", visible or not (8: closed,
                                                                             // from Qt 6.11 on), sizes
        "00000001.{16}fc0[12]00000001fb"                                     // right, its size; one dock:
        "000000140064006f0063006b00570069006400670065007401.{32}"            // "dockWidget", visible, sizes
        ".{16}(0000000[1-8]){4}"                                             // size of the centre, corners
        "fc000000010000000[0-3]00000001"                                     // one toolbar line; one toolbar:
        "00000016006d00610069006e0054006f006f006c0042006100720[0-3].{32}")); // "mainToolBar", flags, sizes
    return pattern.match(QString::fromLatin1(state.toHex())).hasMatch();
}

/// Restores `geometry`, of QWidget::saveGeometry, then corrects it: `window` is not larger than the desktop, and if the
/// pointer cannot grab its title bar, it moves onto the nearest screen.
void restoreOnScreen(QWidget &window, const QByteArray &geometry)
{
    const QSize formSize = window.size();
    // Bytes 46 to 49 are the width of the screen. If they are not 0, Qt rejects the geometry of another screen.
    QByteArray anyScreen = geometry;
    if (anyScreen.size() >= 50)
        std::fill_n(anyScreen.begin() + 46, 4, '\0');
    if (!window.restoreGeometry(anyScreen))
        return;
    // The coordinates may be any int. Limits them, so that no calculation overflows. Empty: a damaged rectangle.
    QRect rect = window.geometry() & QRect(-99999, -99999, 199999, 199999);
    const QSize desktop = QGuiApplication::primaryScreen()->availableVirtualSize();
    rect.setSize((rect.isEmpty() ? formSize : rect.size()).boundedTo(desktop));
    // Returns -1 if at least 40 by 10 pixels of the title bar, which is 20 pixels high, are on the screen, else the
    // distance of the centres.
    const auto distance = [&rect](const QScreen *screen) {
        const QRect area = screen->availableGeometry();
        const bool canGrab = area.adjusted(41 - rect.width(), 10, -40, 10).contains(rect.topLeft());
        return canGrab ? -1 : (area.center() - rect.center()).manhattanLength();
    };
    const auto isNearer = [&](const QScreen *a, const QScreen *b) { return distance(a) < distance(b); };
    const QList<QScreen *> screens = QGuiApplication::screens();
    const QScreen *nearest = *std::min_element(screens.cbegin(), screens.cend(), isNearer);
    if (distance(nearest) >= 0) {
        const QRect area = nearest->availableGeometry();
        rect.moveBottomRight({std::min(rect.right(), area.right()), std::min(rect.bottom(), area.bottom())});
        rect.moveTopLeft({std::max(rect.left(), area.left()), std::max(rect.top(), area.top() + 20)});
    }
    const Qt::WindowStates states = window.windowState();
    window.setWindowState(Qt::WindowNoState); // for the normal geometry of a maximised window
    window.setGeometry(rect);
    window.setWindowState(states);
}

/// Updates the table after changes of the parameter list.
void refresh(const TableParams &table)
{
    if (table.model)
        table.model->refresh();
}

} // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(new Ui_MainWindow)
{
    ui->setupUi(this);
    // Hide the empty central widget so that the docks fill the window.
    centralWidget()->hide();
    loadSettings();
    refresh(*ui->tableParams);
}

MainWindow::~MainWindow()
{
    saveSettings();
    delete ui;
}

void MainWindow::loadSettings()
{
    settings = openSettings().release();
    if (!settings)
        return;
    const QByteArray layout = settings->value(SettingsKey::windowState).toByteArray();
    // If this version of Qt writes another format, which the check does not recognise, skip the check.
    if (isUsableWindowState(layout) || !isUsableWindowState(saveState()))
        restoreState(layout);
    if (ui->mainToolBar->isFloating())
        ui->mainToolBar->resize(ui->mainToolBar->sizeHint()); // restoreState accepts any size
    restoreOnScreen(*this, settings->value(SettingsKey::geometry).toByteArray());

    const auto widths = settings->value(SettingsKey::colsWidth).value<QVector<int>>();
    for (int i = 0; i < ui->tableParams->model->columnCount() && i < widths.size(); ++i) {
        // A column of width 0 would be hidden. The table widens columns that are too narrow for its font.
        if (widths.at(i) > 0 && widths.at(i) <= maxColumnWidth)
            ui->tableParams->setColumnWidth(i, widths.at(i));
    }

    const auto rows = storedParamList(*settings);
    if (!rows.isEmpty())
        pdx3.paramList = rows;
}

void MainWindow::saveSettings()
{
    if (settings && canSave(*settings)) {
        settings->setValue(SettingsKey::geometry, saveGeometry());
        settings->setValue(SettingsKey::windowState, saveState());
        QVector<int> widths;
        for (int i = 0; i < ui->tableParams->model->columnCount(); ++i)
            widths.append(ui->tableParams->columnWidth(i));
        settings->setValue(SettingsKey::colsWidth, QVariant::fromValue(widths));
        settings->setValue(SettingsKey::paramList, QVariant::fromValue(pdx3.paramList));
    }
    delete settings; // writes the file
}

void MainWindow::on_actioncopy_triggered()
{
    copyParamsToClipboard(pdx3);
}

void MainWindow::on_actionpaste_triggered()
{
    pasteParamsFromClipboard(pdx3);
    refresh(*ui->tableParams);
}

void MainWindow::on_actionreset_triggered()
{
    QMessageBox dialog;
    dialog.setText(QStringLiteral("This will reset parameters values to original preset"));
    dialog.setInformativeText(QStringLiteral("Do you want to reset values?"));
    dialog.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
    dialog.setDefaultButton(QMessageBox::Cancel);
    if (dialog.exec() != QMessageBox::Ok)
        return;
    pdx3.resetParamList();
    refresh(*ui->tableParams);
}

void MainWindow::on_actionabout_triggered()
{
    QMessageBox::about(this, QString(), readTextFile(QStringLiteral(":/about.html")));
}

QString MainWindow::readTextFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return QString::fromUtf8(bytes.constData()); // ends at the first zero byte
}
