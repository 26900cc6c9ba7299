#include "app/MainWindow.h"

#include "app/Clipboard.h"
#include "app/Settings.h"
#include "app/SettingsFormat.h"
#include "app/WindowStateCheck.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "ui_MainWindow.h"

#include <QFile>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>

namespace {

/// The largest accepted column width in pixels, wider than any screen. A larger one is damaged.
constexpr int widestColumn = 20000;

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
    // The docks fill the window.
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
    // restoreState and restoreGeometry accept any size, and the pixels of a huge window would take gigabytes.
    const QSize largest = QGuiApplication::primaryScreen()->availableVirtualSize();
    if (ui->mainToolBar->isFloating())
        ui->mainToolBar->resize(ui->mainToolBar->size().boundedTo(largest));

    QVector<QRect> screens;
    const QList<QScreen *> screenList = QGuiApplication::screens();
    for (const QScreen *screen : screenList)
        screens << screen->availableGeometry();
    const QByteArray geometry = settings->value(SettingsKey::geometry).toByteArray();
    if (isUsableGeometry(geometry, screens) && restoreGeometry(geometry))
        resize(size().boundedTo(largest));

    const auto widths = settings->value(SettingsKey::colsWidth).value<QVector<int>>();
    for (int i = 0; i < ui->tableParams->model->columnCount() && i < widths.size(); ++i) {
        // A column of width 0 would be hidden. The table widens columns that are too narrow for its font.
        if (widths.at(i) > 0 && widths.at(i) <= widestColumn)
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
    QMessageBox box;
    box.setText(QStringLiteral("This will reset parameters values to original preset"));
    box.setInformativeText(QStringLiteral("Do you want to reset values?"));
    box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Cancel);
    if (box.exec() != QMessageBox::Ok)
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
