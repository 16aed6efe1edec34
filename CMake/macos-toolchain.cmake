# Builds for macOS on Debian, with clang and LLVM's linker over the folder that Tools/macos-link makes to stand for the
# system's development kit. TIDEWELL_ARCHITECTURE is arm64 or x86_64.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${TIDEWELL_ARCHITECTURE})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TIDEWELL_ARCHITECTURE)

get_filename_component(CMAKE_OSX_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/macos/sdk ABSOLUTE)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_CXX_COMPILER_TARGET ${TIDEWELL_ARCHITECTURE}-apple-macos)
set(CMAKE_AR /usr/bin/llvm-ar-19)
set(CMAKE_RANLIB /usr/bin/llvm-ranlib-19)
set(CMAKE_INSTALL_NAME_TOOL /usr/bin/llvm-install-name-tool-19)
# The C++ library's headers come without the file in which whoever builds it says how.
set(CMAKE_CXX_FLAGS_INIT "-D_LIBCPP_ABI_VERSION=1 -D_LIBCPP_ABI_NAMESPACE=__1 -D_LIBCPP_PSTL_CPU_BACKEND_SERIAL -O0 -g0")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld-19 -mlinker-version=1000")
