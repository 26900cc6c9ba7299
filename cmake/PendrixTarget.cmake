include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-ffile-prefix-map=a=b PENDRIX_MAPS_FILE_NAMES)

# What every target of the project has in common.
#
# The results of the curve and of the colours are fixed to the last bit of every float. They hold for IEEE
# arithmetic as written: no product fused into an addition, no wider intermediate values, no algebra on floats.
# The flags stand after the user's own, so that a -ffast-math from outside does not reach these targets, nor their
# linking, where it would switch subnormal numbers off for the whole program;
# numerics/FloatModel.h checks at compile time what the language lets it check, and its test what a compiler does.
function(pendrix_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 17
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    POSITION_INDEPENDENT_CODE ON)

  if(PENDRIX_MAPS_FILE_NAMES)
    # The same program comes out of every folder. A debugger wants to find the sources, though.
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
      # From -O2 on, g++ 12's superword vectoriser computes pairs of doubles that are rounded to float and widened
      # again without the rounding.
      target_compile_options(${target} PRIVATE -fno-tree-slp-vectorize)
    endif()
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86|x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
      # The x87 unit computes in 80 bits; SSE2 rounds every operation to its own type.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
  elseif(MSVC)
    target_compile_options(${target} PRIVATE /fp:precise /W4 $<$<BOOL:${PENDRIX_WERROR}>:/WX>)
  else()
    message(WARNING "No flags are known that keep ${CMAKE_CXX_COMPILER_ID} from changing floating-point results.")
  endif()
endfunction()

# A folder of the project as a static library. Its headers are included from the project's root.
function(pendrix_library target)
  add_library(${target} STATIC ${ARGN})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  pendrix_target(${target})
endfunction()

# Sources that the toolkit's compilers generate are not ours to tidy; clang-tidy wants one check at least.
file(WRITE ${PROJECT_BINARY_DIR}/.clang-tidy "Checks: '-*,misc-definitions-in-headers'\n")
