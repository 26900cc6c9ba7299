# Fake CMake package of Qt 5 built for OpenGL ES.
set(Qt5_FOUND TRUE)
set(Qt5Gui_OPENGL_IMPLEMENTATION GLESv2)
