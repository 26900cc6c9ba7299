#pragma once

#include <QOpenGLWidget>
#include <QTimer>

/// Stands for the program's view: as many frames, and nothing in them.
class PendrixWidget : public QOpenGLWidget
{
public:
    explicit PendrixWidget(QWidget *parent) : QOpenGLWidget(parent)
    {
        auto *timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
        timer->start(66);
    }
};
