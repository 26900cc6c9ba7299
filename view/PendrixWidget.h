#pragma once

#include "view/Renderer.h"

/// The view of the curve: draws the global engine and advances its animation by one step with every paint.
///
/// A paint shows the curve that the previous paint computed. The animation runs at the rate of the paints: 15 per
/// second from the timer, plus one for each resize, exposure or drag. A view that is never shown never steps the
/// engine.
class PendrixWidget : public Renderer
{
    Q_OBJECT

public:
    explicit PendrixWidget(QWidget *parent);

    /// Draws the engine's curve, then computes the curve of the next frame.
    void renderScene() override;

    /// Moves the camera to 5 scene units from the curve.
    void initScene() override;
};
