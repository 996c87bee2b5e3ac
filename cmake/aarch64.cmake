# aarch64.cmake: cross-compiling for the device with Debian's g++-aarch64-linux-gnu, or with clang over the
# same libraries (-DSTOPNGO_CLANG=ON); tests run under QEMU. Libraries of the command and of the element are those of
# the processor that are installed beside this machine's (`dpkg --add-architecture arm64`).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES STOPNGO_CLANG)
if(STOPNGO_CLANG)
  set(CMAKE_C_COMPILER clang)
  set(CMAKE_CXX_COMPILER clang++)
  set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
  set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
else()
  set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
  set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
endif()
set(PKG_CONFIG_EXECUTABLE aarch64-linux-gnu-pkg-config)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu CACHE STRING "Runs what is built")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
