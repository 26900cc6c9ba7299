// Renders the pictures of the documents to FOLDER: gallery FOLDER
//
//   window.png        the application's window
//   presets.png       the twelve presets
//   color-modes.png   a curve in the five colour modes
//   export-png.png    an exported image
//
// Uses a temporary settings folder. Exits with 1 if a picture cannot be written.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "export/Writers.h"
#include "ui_MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPainter>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <QWindow>

namespace {

constexpr int cell = 320;   // width and height of a figure in pixels
constexpr int caption = 28; // height of its caption
constexpr int gap = 4;      // between figures and around them

// In 1/16 degree. Seen from above, many figures look flat.
constexpr Turn turn = {30 * 16, 25 * 16, 0};

struct Figure
{
    QVector<float> row;
    QString caption;
};

/// Returns the figures with their captions, row by row, `columns` in each.
QImage sheet(const QVector<Figure> &figures, int columns)
{
    const Page page = {cell, cell, 1.0, Qt::black, turn};
    const int rows = (figures.size() + columns - 1) / columns;
    QImage picture(columns * (cell + gap) + gap, rows * (cell + caption + gap) + gap, QImage::Format_RGB32);
    picture.fill(QColor(0x20, 0x20, 0x20));
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    for (int i = 0; i < figures.size(); ++i) {
        const QPoint corner(gap + i % columns * (cell + gap), gap + i / columns * (cell + caption + gap));
        painter.drawImage(corner, imageOf(curveOf(figures.at(i).row), page));
        painter.drawText(QRect(corner + QPoint(0, cell), QSize(cell, caption)), Qt::AlignCenter, figures.at(i).caption);
    }
    return picture;
}

/// Returns the values of a row without the colour mode, as the table shows them.
QString numbersOf(const QVector<float> &row)
{
    const QVector<float> parameters = row.mid(0, Pendrix3D::rowLength - 1);
    QStringList numbers;
    for (const float number : parameters)
        numbers.append(QString::number(static_cast<double>(number), 'g', 6));
    return numbers.join(QStringLiteral("  "));
}

QVector<Figure> presets()
{
    QVector<Figure> figures;
    for (const QVector<float> &row : qAsConst(pdx3.presets))
        figures.append({row, QStringLiteral("%1:  %2").arg(figures.size() + 1).arg(numbersOf(row))});
    return figures;
}

QVector<Figure> colorModes()
{
    constexpr int preset = 1;
    const QStringList meanings = {QStringLiteral("length"), QStringLiteral("height"), QStringLiteral("distance"),
                                  QStringLiteral("time, slow sweeps"), QStringLiteral("time, fast sweeps")};
    QVector<Figure> figures;
    for (const QString &meaning : meanings) {
        QVector<float> row = pdx3.presets.at(preset);
        row.last() = static_cast<float>(figures.size());
        figures.append({row, QStringLiteral("color %1:  %2").arg(figures.size()).arg(meaning)});
    }
    return figures;
}

/// Waits until the view has shown `count` frames.
void showFrames(const QOpenGLWidget &view, int count)
{
    QEventLoop loop;
    QObject::connect(&view, &QOpenGLWidget::frameSwapped, &loop, [&loop, &count] {
        if (--count == 0)
            loop.quit();
    });
    loop.exec();
}

/// Returns the application's window with a preset selected, wide enough for all columns of the table.
QImage windowPicture()
{
    constexpr int preset = 9;
    constexpr int tableWidth = 690;
    constexpr int curveWidth = 535;
    MainWindow window;
    window.resize(tableWidth + curveWidth, 620);
    window.show();
    showFrames(*window.ui->pdx3, 1); // docks have no size before the first frame
    window.resizeDocks({window.ui->dockParams, window.ui->dockWidget}, {tableWidth, curveWidth}, Qt::Horizontal);
    window.ui->pdx3->setXRotation(turn.x);
    window.ui->pdx3->setYRotation(turn.y);
    showFrames(*window.ui->pdx3, 10); // wait for the layout
    window.ui->tableParams->selectRow(preset);
    showFrames(*window.ui->pdx3, 10);
    return window.windowHandle()->screen()->grabWindow(window.winId()).toImage();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "usage: gallery FOLDER\n";
        return 2;
    }

    const QTemporaryDir scratch;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, scratch.path());
    const QImage window = windowPicture();

    const QImage preset10 = imageOf(curveOf(pdx3.presets.at(9)), {480, 480, 1.0, Qt::black, turn});
    const QDir folder(arguments.at(1));
    const bool saved = window.save(folder.filePath(QStringLiteral("window.png"))) &&
                       sheet(presets(), 4).save(folder.filePath(QStringLiteral("presets.png"))) &&
                       sheet(colorModes(), 5).save(folder.filePath(QStringLiteral("color-modes.png"))) &&
                       preset10.save(folder.filePath(QStringLiteral("export-png.png")));
    if (!saved)
        QTextStream(stderr) << "gallery: cannot write: " << folder.path() << '\n';
    return saved ? 0 : 1;
}
