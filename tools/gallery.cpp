// Renders the pictures of the documents: gallery FOLDER
//
// Writes window.png, the program's window, presets.png, the curves of the twelve presets, and color-modes.png, one
// curve in the five colour modes, to FOLDER, drawn by the program's window and view with temporary settings. Exits with
// 1 if a figure is blank or a picture cannot be written.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "ui_MainWindow.h"
#include "view/PendrixWidget.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPainter>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <QWindow>
#include <qopengl.h>

namespace {

constexpr int cell = 320;    // pixels, width and height of a figure
constexpr int caption = 28;  // pixels, height of the caption below it
constexpr int smoothing = 2; // supersampling factor
constexpr int gap = 4;       // pixels, between the cells and around them

// View angles in 1/16 degree: from straight above many figures look flat.
constexpr int xAngle = 30 * 16;
constexpr int yAngle = 25 * 16;

struct Figure
{
    QVector<float> row;
    QString caption;
};

bool isBlack(const QImage &picture)
{
    QImage black(picture.size(), picture.format());
    black.fill(Qt::black);
    return picture == black;
}

/// Returns a picture of the figures, row by row with `columns` each; a null image if a figure is blank.
QImage sheet(PendrixWidget &view, const QVector<Figure> &figures, int columns)
{
    const int rows = (figures.size() + columns - 1) / columns;
    QImage picture(columns * (cell + gap) + gap, rows * (cell + caption + gap) + gap, QImage::Format_RGB32);
    picture.fill(QColor(0x20, 0x20, 0x20));
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    for (int i = 0; i < figures.size(); ++i) {
        const QPoint corner(gap + i % columns * (cell + gap), gap + i / columns * (cell + caption + gap));
        pdx3.set(figures.at(i).row);
        view.makeCurrent();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT); // grabFramebuffer does not clear
        const QImage drawn = view.grabFramebuffer();
        if (isBlack(drawn))
            return {};
        painter.drawImage(corner, drawn.scaledToWidth(cell, Qt::SmoothTransformation));
        painter.drawText(QRect(corner + QPoint(0, cell), QSize(cell, caption)), Qt::AlignCenter, figures.at(i).caption);
    }
    painter.end();
    return picture;
}

/// Returns the numbers of a row in the order of the table's columns, without the colour mode.
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

/// Returns a picture of the window with a preset selected, wide enough for all columns of the table.
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
    window.ui->pdx3->setXRotation(xAngle);
    window.ui->pdx3->setYRotation(yAngle);
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

    PendrixWidget view(nullptr);
    view.setFixedSize(smoothing * cell, smoothing * cell);
    view.show();
    view.setXRotation(xAngle);
    view.setYRotation(yAngle);

    const QDir folder(arguments.at(1));
    const bool saved = window.save(folder.filePath(QStringLiteral("window.png"))) &&
                       sheet(view, presets(), 4).save(folder.filePath(QStringLiteral("presets.png"))) &&
                       sheet(view, colorModes(), 5).save(folder.filePath(QStringLiteral("color-modes.png")));
    if (!saved)
        QTextStream(stderr) << "gallery: a figure is blank, or this folder is not writable: " << folder.path() << '\n';
    return saved ? 0 : 1;
}
