#pragma once

#include "view/Renderer.h"

/// The view of the curve: draws the global engine and advances its animation by one step with every paint.
///
/// Holds nothing itself. A paint shows the curve that the paint before computed, so that the speed of the animation is
/// the rate of the paints: 15 a second from the timer, and one more for each that a resize, an exposure or a drag
/// causes. A view that is never shown never steps the engine.
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
