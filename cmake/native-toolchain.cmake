set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")
