# Builds for 64-bit ARM with Debian's cross compiler and runs what was built under qemu-user, on the
# arm64 libraries that scripts/bootstrap.sh --cross installs beside the native ones.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)  # GoogleTest asks for one
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

# What no arm64 package can be installed for lies below this folder: see AndroidLibs.cmake.
set(AVI_ARM64_ROOT ${CMAKE_BINARY_DIR}/arm64-root)
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-aarch64 -E LD_LIBRARY_PATH=${AVI_ARM64_ROOT}/usr/lib/p7zip)

# qemu-user leaves what a program executes to the kernel, which knows no arm64: under proot those
# children run under qemu too. It traces every system call, so it is for the tests that need it.
set(AVI_SPAWNING_EMULATOR
    env LD_LIBRARY_PATH=${AVI_ARM64_ROOT}/usr/lib/p7zip proot -q qemu-aarch64)
