# Fake CMake package of Qt 6 built for OpenGL ES.
set(Qt6_FOUND TRUE)
set(QT_FEATURE_opengles2 ON)
