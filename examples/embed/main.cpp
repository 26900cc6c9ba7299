#include "engine/Pendrix3D.h"
#include "view/PendrixWidget.h"

#include <QApplication>
#include <QColor>
#include <QHBoxLayout>
#include <qopengl.h>

/// A view that draws a solid with one colour per face and rotates it a little with every frame.
class Solid : public Renderer
{
    Q_OBJECT

public:
    using Renderer::Renderer;

    void initScene() override { distance = -4.0F; }

    void renderScene() override
    {
        static QColor colors[12];
        for (int face = 0; face < 12; ++face)
            colors[face].setHsv(face * 30, 255, 255);
        dodecahedron(GL_POLYGON, colors);
        setXRotation(xRot + 16); // one degree
        setYRotation(yRot + 16);
    }
};

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    layout->addWidget(new PendrixWidget(&window));
    layout->addWidget(new Solid(&window));
    pdx3.set({2.0F, 3.0F, 4.0F, 0.25F, 0.0F, 2.0F}); // frequencies, phases, colour mode
    window.setWindowTitle("A host of Pendrix 3D");
    window.resize(900, 450);
    window.show();
    return QApplication::exec();
}

#include "main.moc"
