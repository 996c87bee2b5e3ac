# Compile.cmake: how every target is compiled.
#
# Warnings are errors. Floating contraction is off everywhere: a compiler that fuses a multiplication
# and an addition on its own (GCC does on aarch64) changes scores.
add_library(stopngo_options INTERFACE)
target_compile_options(stopngo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror -ffp-contract=off)
if(STOPNGO_SANITIZE)
  target_compile_options(stopngo_options INTERFACE
    -fsanitize=${STOPNGO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(stopngo_options INTERFACE -fsanitize=${STOPNGO_SANITIZE})
endif()

# With STOPNGO_UNITY, a target's sources become a few: they share what takes longest, the headers of libraries.
# Half a dozen each, so that processors share the work.
function(compile_together target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${STOPNGO_UNITY} UNITY_BUILD_BATCH_SIZE 6
    UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")
endfunction()
