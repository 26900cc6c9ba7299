#pragma once

/// Fixed-function drawing helpers for a view, to be inherited. Holds no data.
class OpenGL
{
};
