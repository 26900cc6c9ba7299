#include "app/MainWindow.h"

#include "app/Clipboard.h"
#include "app/SettingsFile.h"
#include "app/SettingsTypes.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "ui_MainWindow.h"

#include <QFile>
#include <QMessageBox>
#include <QSettings>

#include <algorithm>

namespace {

constexpr auto windowStateKey = "windowState";
constexpr auto geometryKey = "geometry";
constexpr auto colsWidthKey = "colsWidth";
constexpr auto paramListKey = "paramList";

using Rows = QVector<QVector<float>>;

/// Whether `rows` has the shape of the engine's parameter list: everyone who reads it relies on 64 rows of six.
bool isParameterList(const Rows &rows)
{
    return rows.size() == Pendrix3D::rowCount && std::all_of(rows.cbegin(), rows.cend(), [](const QVector<float> &row) {
               return row.size() == Pendrix3D::rowLength;
           });
}

/// Shows what has been written to the parameter list outside the table.
void refresh(const TableParams &table)
{
    if (table.model)
        table.model->refresh();
}

/// Path of the settings file. Asking the toolkit for it opens the file, damaged or not; another program's of the same
/// organisation stands in the same folder.
QString settingsPath()
{
    const QSettings neighbour(QStringLiteral("quillmoss"), QStringLiteral("pdx3-neighbour"));
    return QString(neighbour.fileName()).replace(QStringLiteral("pdx3-neighbour"), QStringLiteral("pdx3"));
}

/// While it lives, the toolkit's messages go nowhere.
class Silence
{
public:
    Silence() : before(qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {})) {}
    ~Silence() { qInstallMessageHandler(before); }
    Q_DISABLE_COPY(Silence)

private:
    QtMessageHandler before;
};

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
    const Silence silence; // the toolkit comments on what it finds in a damaged store
    registerSettingsTypes();
    if (!mendSettingsFile(settingsPath()))
        return;
    settings = new QSettings(QStringLiteral("quillmoss"), QStringLiteral("pdx3"));

    restoreState(settings->value(windowStateKey).toByteArray());
    restoreGeometry(settings->value(geometryKey).toByteArray());

    const auto widths = settings->value(colsWidthKey).value<QVector<int>>();
    for (int i = 0; i < ui->tableParams->model->columnCount() && i < widths.size(); ++i)
        ui->tableParams->setColumnWidth(i, widths.at(i));

    const auto rows = settings->value(paramListKey).value<Rows>();
    if (isParameterList(rows))
        pdx3.paramList = rows;
}

void MainWindow::saveSettings()
{
    if (!settings) // the store is damaged and cannot be mended
        return;
    settings->setValue(geometryKey, saveGeometry());
    settings->setValue(windowStateKey, saveState());

    QVector<int> widths;
    for (int i = 0; i < ui->tableParams->model->columnCount(); ++i)
        widths.append(ui->tableParams->columnWidth(i));
    settings->setValue(colsWidthKey, QVariant::fromValue(widths));

    settings->setValue(paramListKey, QVariant::fromValue(pdx3.paramList));
    delete settings;
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
