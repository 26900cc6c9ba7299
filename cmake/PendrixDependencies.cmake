# Qt 5 and OpenGL.
#
# An imported target is visible only in the folder that finds it and below. Host projects link these targets from the
# parent folder, so the targets found here are made global. Targets that the host project has found stay unchanged.
set(PENDRIX_IMPORTED
  Qt5::Core Qt5::Gui Qt5::Widgets Qt5::qmake Qt5::moc Qt5::rcc Qt5::uic
  OpenGL::OpenGL OpenGL::GLX OpenGL::GL)
set(PENDRIX_FOUND_HERE ${PENDRIX_IMPORTED})
foreach(target IN LISTS PENDRIX_IMPORTED)
  if(TARGET ${target})
    list(REMOVE_ITEM PENDRIX_FOUND_HERE ${target})
  endif()
endforeach()

find_package(Qt5 5.12 REQUIRED COMPONENTS Core Gui Widgets)
if(Qt5Gui_OPENGL_IMPLEMENTATION MATCHES "GLES")
  message(FATAL_ERROR
    "This Qt was built for OpenGL ES, which has no fixed-function pipeline. "
    "Pendrix 3D requires a Qt built for desktop OpenGL.")
endif()

set(OpenGL_GL_PREFERENCE GLVND)
find_package(OpenGL REQUIRED)

foreach(target IN LISTS PENDRIX_FOUND_HERE)
  if(TARGET ${target})
    set_target_properties(${target} PROPERTIES IMPORTED_GLOBAL TRUE)
  endif()
endforeach()
