# Compile.cmake: how every target is compiled.
#
# Warnings are errors. Floating contraction is off everywhere: a compiler that fuses a multiplication
# and an addition on its own (GCC does on aarch64) changes scores. Nothing may hold the time at which it was compiled:
# the same sources give the same files (scripts/reproduce).
add_library(stopngo_options INTERFACE)
target_compile_options(stopngo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wdate-time -Werror -ffp-contract=off)
if(STOPNGO_SANITIZE)
  target_compile_options(stopngo_options INTERFACE
    -fsanitize=${STOPNGO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(stopngo_options INTERFACE -fsanitize=${STOPNGO_SANITIZE})
endif()

# Hardening, of every target. Returns and indirect calls are guarded where processor and system can (CET, BTI, PAC):
# the linker says so in the file when every object of it does, which Debian's start files do not; a program has to have
# those, the module has not (src/CMakeLists.txt). Sanitizers see more than stack protector and fortified calls do,
# and these hide things from them.
target_link_options(stopngo_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
if(NOT STOPNGO_SANITIZE)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(stopngo_options INTERFACE -fcf-protection)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    target_compile_options(stopngo_options INTERFACE -mbranch-protection=standard)
  endif()
  target_compile_options(stopngo_options INTERFACE -fstack-protector-strong
    # Some compilers set a level of their own.
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

# With STOPNGO_UNITY, or ALWAYS, a target's sources become a few: they share what takes longest, the headers of
# libraries. Half a dozen each (STOPNGO_UNITY_BATCH), so that processors share the work.
function(compile_together target)
  set(together ${STOPNGO_UNITY})
  if("ALWAYS" IN_LIST ARGN)
    set(together ON)
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${together} UNITY_BUILD_BATCH_SIZE ${STOPNGO_UNITY_BATCH}
    UNITY_BUILD_CODE_BEFORE_INCLUDE "// NOLINTNEXTLINE(bugprone-suspicious-include)")
  # g++ takes joined sources for headers, in which a type of one file alone would be amiss.
  if(together)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
  endif()
endfunction()
