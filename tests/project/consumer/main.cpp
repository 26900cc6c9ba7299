// A program of somebody else's: what it links is there before main, and the headers are found from the root.

#include "app/MainWindow.h"
#include "color/ColorScale.h"
#include "engine/Pendrix3D.h"
#include "table/Model.h"
#include "table/TableParams.h"
#include "view/OpenGL.h"
#include "view/PendrixWidget.h"
#include "view/Renderer.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

int between();

class Subclass : public MainWindow
{
    Q_OBJECT
};

int main(int argc, char *argv[])
{
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));

    const bool engineStands = pdx3.points.size() == 16666 && pdx3.paramList.size() == 64;
    const bool bundleStands = QFile::exists(":/Tessera/rsc/icons/clear.png");
    if (!engineStands || !bundleStands || between() != 42)
        return 1;

    QApplication application(argc, argv);
    Subclass window;
    window.show();
    QCoreApplication::processEvents();
    return ColorScaleRGB(0x000000, 0xFFFFFF, 0.5F) == 0x808080 ? 0 : 2;
}

#include "main.moc"
