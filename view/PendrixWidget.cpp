#include "view/PendrixWidget.h"

#include "engine/Pendrix3D.h"
#include "view/Camera.h"

PendrixWidget::PendrixWidget(QWidget *parent) : Renderer(parent) {}

void PendrixWidget::renderScene()
{
    pdx3.draw();
    pdx3.next();
}

void PendrixWidget::initScene()
{
    distance = Camera::curveDistance;
}
