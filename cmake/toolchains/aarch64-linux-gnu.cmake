# Cross build for 64-bit Arm Linux with Debian's g++-aarch64-linux-gnu; the test binaries run
# under qemu-user with the cross sysroot as their library root.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(tarnic_target aarch64-linux-gnu)
set(CMAKE_C_COMPILER ${tarnic_target}-gcc)
set(CMAKE_CXX_COMPILER ${tarnic_target}-g++)

# Debian installs the target's libraries under /usr/<triplet>.
set(tarnic_sysroot /usr/${tarnic_target})
set(CMAKE_FIND_ROOT_PATH ${tarnic_sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${tarnic_sysroot})
