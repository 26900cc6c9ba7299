# Support for code that is compiled once per instruction set. The program selects a variant at run time. Such code must
# not share inline functions with the rest of the program.

# The instruction sets that this compiler and target processor support. Baseline is the instruction set of the whole
# build.
set(PENDRIX_INSTRUCTION_SETS)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  list(APPEND PENDRIX_INSTRUCTION_SETS Baseline)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    list(APPEND PENDRIX_INSTRUCTION_SETS Avx2 Avx512)
  endif()
endif()
set(PENDRIX_FLAGS_Baseline)
set(PENDRIX_FLAGS_Avx2 -mavx2 -mfma -ffp-contract=fast)
set(PENDRIX_FLAGS_Avx512
  -mavx512f -mavx512dq -mavx512vl -mfma -mprefer-vector-width=512 -ffp-contract=fast)

# pendrix_for_instruction_set(TARGET SET SOURCE ...): compiles the sources to an object library for one instruction set.
function(pendrix_for_instruction_set target set)
  add_library(${target} OBJECT ${ARGN})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  pendrix_target(${target})
  target_compile_options(${target} PRIVATE ${PENDRIX_FLAGS_${set}})
endfunction()
