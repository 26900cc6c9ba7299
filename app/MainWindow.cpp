#include "app/MainWindow.h"

#include "app/Clipboard.h"
#include "app/SettingsFile.h"
#include "app/SettingsTypes.h"
#include "app/WindowStateCheck.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "ui_MainWindow.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QSettings>
#include <QTemporaryFile>

#include <algorithm>

namespace {

constexpr auto windowStateKey = "windowState";
constexpr auto geometryKey = "geometry";
constexpr auto colsWidthKey = "colsWidth";
constexpr auto paramListKey = "paramList";

/// Wider than any screen, in pixels; a greater width can only be damage.
constexpr int widestColumn = 20000;

/// More than the store can grow by in a run, in bytes: 64 rows take about 8000 in the store's text form.
constexpr qint64 growth = 16384;

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
    const QFileInfo file(neighbour.fileName());
    return file.dir().filePath(file.fileName().replace(QStringLiteral("pdx3-neighbour"), QStringLiteral("pdx3")));
}

/// Applies what `store` holds to the window, its table and the engine's parameter list.
void apply(const QSettings &store, MainWindow &window)
{
    const QByteArray layout = store.value(windowStateKey).toByteArray();
    // A toolkit that writes layouts in another form than we know is left alone with them.
    if (isMainWindowStateCheck(layout) || !isMainWindowStateCheck(window.saveState()))
        window.restoreState(layout);
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (window.restoreGeometry(store.value(geometryKey).toByteArray()) && screen)
        window.resize(window.size().boundedTo(screen->availableVirtualSize())); // the toolkit takes any size

    TableParams &table = *window.ui->tableParams;
    const auto widths = store.value(colsWidthKey).value<QVector<int>>();
    for (int i = 0; i < table.model->columnCount() && i < widths.size(); ++i) {
        // A column of no width would be hidden. The toolkit widens one that has become too narrow for a larger font.
        if (widths.at(i) > 0 && widths.at(i) <= widestColumn)
            table.setColumnWidth(i, widths.at(i));
    }

    const auto rows = store.value(paramListKey).value<Rows>();
    if (isParameterList(rows))
        pdx3.paramList = rows;
}

/// While it lives, the toolkit's messages go nowhere: it comments on what it finds in a damaged store.
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
    const Silence silence;
    registerSettingsTypes();
    const QString path = settingsPath();
    if (mendSettingsFile(path)) {
        settings = new QSettings(QStringLiteral("quillmoss"), QStringLiteral("pdx3"));
        settings->setFallbacksEnabled(false); // the user's store and no other
        apply(*settings, *this);
        return;
    }

    // The store cannot be written, so what is good of it is read from a copy and nothing will be saved.
    QTemporaryFile copy;
    QFile damaged(path);
    if (copy.open() && damaged.open(QIODevice::ReadOnly)) {
        copy.write(harmlessPartOf(damaged.readAll()));
        copy.close();
        apply(QSettings(copy.fileName(), QSettings::IniFormat), *this);
    }
}

void MainWindow::saveSettings()
{
    if (!settings)
        return;
    const Silence silence;
    if (hasRoomBeside(settings->fileName(), QFileInfo(settings->fileName()).size() + growth)) {
        settings->setValue(geometryKey, saveGeometry());
        settings->setValue(windowStateKey, saveState());

        QVector<int> widths;
        for (int i = 0; i < ui->tableParams->model->columnCount(); ++i)
            widths.append(ui->tableParams->columnWidth(i));
        settings->setValue(colsWidthKey, QVariant::fromValue(widths));

        settings->setValue(paramListKey, QVariant::fromValue(pdx3.paramList));
    }
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
