# Included by the project examples/embed: finds Qt HOST_QT as a host project may.
find_package(Qt${HOST_QT} REQUIRED COMPONENTS Core)
