include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-ffile-prefix-map=a=b PENDRIX_MAPS_FILE_NAMES)

# pendrix_target(TARGET): sets the compile and link options that every target needs.
#
# Curves and colours are fixed to the last bit of every float. This requires IEEE arithmetic as written: no contraction,
# no excess precision, no reassociation. These options come after CMAKE_CXX_FLAGS, so that a -ffast-math there affects
# neither compiling nor linking (where it would flush subnormal numbers to zero in the whole process).
# numerics/FloatModel.h and its test check the compiler.
function(pendrix_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 17
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    POSITION_INDEPENDENT_CODE ON)
  # No warnings of what later versions of Qt deprecate.
  target_compile_definitions(${target} PRIVATE QT_WARN_DEPRECATED_UP_TO=0x060400)

  if(PENDRIX_MAPS_FILE_NAMES)
    # Reproducible builds: no absolute paths, except in debug builds, where the debugger needs them.
    target_compile_options(${target} PRIVATE
      $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
      $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=./build>)
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE
      -fno-fast-math -ffp-contract=off
      -Wall -Wextra -Wpedantic -Wconversion -Wshadow
      $<$<BOOL:${PENDRIX_WERROR}>:-Werror>)
    target_link_options(${target} PRIVATE -fno-fast-math)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # g++ 12's SLP vectoriser (-O2 and above) drops the rounding of double-float-double conversions.
      target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
    endif()
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86|x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
      # x87 computes with 80 bits; SSE2 rounds every operation to its type.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
  elseif(MSVC)
    target_compile_options(${target} PRIVATE /fp:precise /W4 $<$<BOOL:${PENDRIX_WERROR}>:/WX>)
  else()
    message(WARNING "Pendrix3D: unknown compiler: ${CMAKE_CXX_COMPILER_ID}: floating-point results may differ")
  endif()
endfunction()

# pendrix_library(TARGET SOURCE ...): adds a static library. Headers are included relative to the project's root.
function(pendrix_library target)
  add_library(${target} STATIC ${ARGN})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  pendrix_target(${target})
endfunction()

# Disables clang-tidy for generated sources; clang-tidy requires at least one check.
file(WRITE ${PROJECT_BINARY_DIR}/.clang-tidy "Checks: '-*,misc-definitions-in-headers'\n")
