# Qt 5 or Qt 6, and OpenGL. Sets PENDRIX_QT_MAJOR to the major version of Qt: the version that the host project has
# found, or else PENDRIX_QT. Sets PENDRIX_OPENGL_WIDGETS to the target with QOpenGLWidget.
set(PENDRIX_QT "" CACHE STRING "Major version of Qt: 5, 6, or empty for Qt 5 if it is found, else Qt 6")
set_property(CACHE PENDRIX_QT PROPERTY STRINGS "" 5 6)
if(NOT PENDRIX_QT MATCHES "^[56]?$")
  message(FATAL_ERROR "PENDRIX_QT must be 5, 6 or empty, not \"${PENDRIX_QT}\".")
endif()

# An imported target is visible only in the folder that finds it and below. Host projects link these targets from the
# parent folder, so the targets found here are made global. Targets that the host project has found stay unchanged. The
# list is for CMake before 3.24. It has no targets of Qt 6, which a host project with such a CMake must find itself.
set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
set(PENDRIX_IMPORTED
  Qt::Core Qt::Gui Qt::Widgets Qt5::Core Qt5::Gui Qt5::Widgets Qt5::qmake Qt5::moc Qt5::rcc Qt5::uic
  OpenGL::OpenGL OpenGL::GLX OpenGL::GL)
set(PENDRIX_FOUND_HERE ${PENDRIX_IMPORTED})
foreach(target IN LISTS PENDRIX_IMPORTED)
  if(TARGET ${target})
    list(REMOVE_ITEM PENDRIX_FOUND_HERE ${target})
  endif()
endforeach()

# Qt's packages set QT_DEFAULT_MAJOR_VERSION, the version that the targets and commands without a version belong to.
if(DEFINED QT_DEFAULT_MAJOR_VERSION)
  set(PENDRIX_QT_MAJOR ${QT_DEFAULT_MAJOR_VERSION})
elseif(PENDRIX_QT)
  set(PENDRIX_QT_MAJOR ${PENDRIX_QT})
else()
  find_package(Qt5 5.15 QUIET COMPONENTS Core)
  set(PENDRIX_QT_MAJOR 6)
  if(Qt5_FOUND)
    set(PENDRIX_QT_MAJOR 5)
  endif()
endif()
if(PENDRIX_QT_MAJOR EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets)
  set(PENDRIX_OPENGL_WIDGETS Qt::Widgets)
else()
  find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets OpenGLWidgets)
  set(PENDRIX_OPENGL_WIDGETS Qt::OpenGLWidgets)
endif()
message(STATUS "Pendrix 3D uses Qt ${Qt${PENDRIX_QT_MAJOR}_VERSION}")
if(Qt5Gui_OPENGL_IMPLEMENTATION MATCHES "GLES" OR QT_FEATURE_opengles2)
  message(FATAL_ERROR
    "This Qt was built for OpenGL ES, which has no fixed-function pipeline. "
    "Pendrix 3D requires a Qt built for desktop OpenGL.")
endif()

set(OpenGL_GL_PREFERENCE GLVND)
find_package(OpenGL REQUIRED)

foreach(target IN LISTS PENDRIX_FOUND_HERE)
  if(TARGET ${target} AND PENDRIX_QT_MAJOR EQUAL 5)
    set_target_properties(${target} PROPERTIES IMPORTED_GLOBAL TRUE)
  endif()
endforeach()
unset(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL)
