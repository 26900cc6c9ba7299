// Renders the pictures of the documents to FOLDER: pendrix_gallery FOLDER
//
//   window.png        the application's window
//   presets.png       the twelve presets
//   color-modes.png   a curve in each colour mode
//   ratios.png        small ratios of frequencies, exact and detuned
//   phases.png        one ratio with different phases
//   try.png           three rows to try
//   export-png.png    an exported image
//
// Uses a temporary settings folder. Exits with 1 if a picture cannot be written.

#include "app/MainWindow.h"
#include "engine/Pendrix3D.h"
#include "export/LineImage.h"
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

#include <iterator>
#include <utility>

namespace {

constexpr int cell = 320;   // width and height of a figure in pixels
constexpr int caption = 28; // height of its caption
constexpr int gap = 4;      // between figures and around them

// In 1/16 degree. Seen from above, many figures look flat.
constexpr Turn turn = {30 * 16, 25 * 16, 0};

/// The angles of the program's start, at which flat figures are seen from the front.
constexpr Turn front = {0, 0, 0};

struct Figure
{
    QVector<float> row;
    QString caption;
    Turn angles = turn;
};

/// Returns the figures with their captions, row by row, `columns` in each.
QImage sheet(const QVector<Figure> &figures, int columns)
{
    const int rows = (static_cast<int>(figures.size()) + columns - 1) / columns;
    QImage picture(columns * (cell + gap) + gap, rows * (cell + caption + gap) + gap, QImage::Format_RGB32);
    picture.fill(QColor(0x20, 0x20, 0x20));
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    for (int i = 0; i < figures.size(); ++i) {
        const QPoint corner(gap + i % columns * (cell + gap), gap + i / columns * (cell + caption + gap));
        const Page page = {cell, cell, 1.0, Qt::black, figures.at(i).angles};
        painter.drawImage(corner, imageOf(drawingOf(curveOf(figures.at(i).row), page), page));
        painter.drawText(QRect(corner + QPoint(0, cell), QSize(cell, caption)), Qt::AlignCenter, figures.at(i).caption);
    }
    return picture;
}

/// Returns the values of a row, as the table shows them.
QString numbersOf(const QVector<float> &row)
{
    QStringList numbers;
    for (const float number : row)
        numbers.append(QString::number(static_cast<double>(number), 'g', 6));
    const QString mode = numbers.takeLast();
    return numbers.join(QStringLiteral("  ")) + QStringLiteral("   color ") + mode;
}

QVector<Figure> presets()
{
    QVector<Figure> figures;
    for (const QVector<float> &row : std::as_const(pdx3.presets))
        figures.append({row, QStringLiteral("%1:  %2").arg(figures.size() + 1).arg(numbersOf(row))});
    return figures;
}

QVector<Figure> colorModes()
{
    constexpr int preset = 1;
    constexpr const char *meanings[] = {"position along the curve", "depth at the start", "distance from the centre",
                                        "time, slow sweeps", "time, fast sweeps"};
    static_assert(std::size(meanings) == Pendrix3D::colorModeCount, "one caption for each colour mode");
    QVector<Figure> figures;
    for (const char *const meaning : meanings) {
        QVector<float> row = pdx3.presets.at(preset);
        row.last() = static_cast<float>(figures.size());
        figures.append({row, QStringLiteral("color %1:  %2").arg(figures.size()).arg(QLatin1String(meaning))});
    }
    return figures;
}

/// Returns flat figures of small ratios, and below each the same ratio slightly detuned.
QVector<Figure> ratios()
{
    constexpr float pairs[][2] = {{1.0F, 1.0F}, {1.0F, 2.0F}, {2.0F, 3.0F}, {3.0F, 4.0F}};
    QVector<Figure> figures;
    for (const float detuning : {0.0F, 0.01F}) {
        for (const auto &pair : pairs) {
            const float freq2 = pair[1] + detuning;
            figures.append({{pair[0], freq2, 0.0F, 0.25F, 0.0F, 0.0F},
                            QStringLiteral("freq1 %1   freq2 %2")
                                .arg(static_cast<double>(pair[0]))
                                .arg(static_cast<double>(freq2)),
                            front});
        }
    }
    return figures;
}

/// Returns flat figures of two ratios with different phases.
QVector<Figure> phases()
{
    QVector<Figure> figures;
    for (const float freq2 : {1.0F, 2.0F}) {
        for (const float phase1 : {0.0F, 0.0625F, 0.125F, 0.25F}) {
            figures.append({{1.0F, freq2, 0.0F, phase1, 0.0F, 0.0F},
                            QStringLiteral("freq1 1   freq2 %1   phase1 %2")
                                .arg(static_cast<double>(freq2))
                                .arg(static_cast<double>(phase1)),
                            front});
        }
    }
    return figures;
}

/// Returns the figures of rows that differ clearly from the presets.
QVector<Figure> rowsToTry()
{
    QVector<Figure> figures;
    for (const QVector<float> &row :
         {QVector<float>{1.0F, 1.0F, 2.01F, 0.25F, 0.0F, 1.0F}, QVector<float>{5.0F, 3.0F, 8.0F, 0.25F, 0.25F, 2.0F},
          QVector<float>{3.0F, 2.0F, 1.005F, 0.25F, 0.25F, 3.0F}})
        figures.append({row, numbersOf(row)});
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
        QTextStream(stderr) << "usage: pendrix_gallery FOLDER\n";
        return 2;
    }

    const QTemporaryDir scratch;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, scratch.path());
    const QImage window = windowPicture();

    const Page page = {480, 480, 1.0, Qt::black, turn};
    const QImage preset10 = imageOf(drawingOf(curveOf(pdx3.presets.at(9)), page), page);
    const QDir folder(arguments.at(1));
    const bool saved =
        window.save(folder.filePath(QStringLiteral("window.png"))) &&
        sheet(presets(), 4).save(folder.filePath(QStringLiteral("presets.png"))) &&
        sheet(colorModes(), Pendrix3D::colorModeCount).save(folder.filePath(QStringLiteral("color-modes.png"))) &&
        sheet(ratios(), 4).save(folder.filePath(QStringLiteral("ratios.png"))) &&
        sheet(phases(), 4).save(folder.filePath(QStringLiteral("phases.png"))) &&
        sheet(rowsToTry(), 3).save(folder.filePath(QStringLiteral("try.png"))) &&
        preset10.save(folder.filePath(QStringLiteral("export-png.png")));
    if (!saved)
        QTextStream(stderr) << "pendrix_gallery: cannot write: " << folder.path() << '\n';
    return saved ? 0 : 1;
}
