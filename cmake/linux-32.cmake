# Builds for 32-bit Linux with Debian's g++-multilib:
#   cmake -S . -B build-32 -DCMAKE_TOOLCHAIN_FILE=cmake/linux-32.cmake
# SSE2, because the other floating-point unit keeps more bits than Double has: a formula
# would not give the same value to the last bit.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
