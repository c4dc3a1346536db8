# Cross-building for 64-bit Windows on Debian. What Debian has no Windows build of lies in the folder
# that scripts/windows-libraries makes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The compiler whose threads are the system's behind the POSIX interface: the C++ library's own.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_DLLTOOL x86_64-w64-mingw32-dlltool)

cmake_path(SET root NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/..)
set(libraries ${root}build/windows-libraries/installed)
set(CMAKE_FIND_ROOT_PATH ${libraries} /usr/x86_64-w64-mingw32)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${libraries}/include)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The system aligns the stack to 16 bytes only, and the compiler trusts that values of 32 and 64
# bytes are aligned there: the assembler makes every move of them one that need not be.
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
# Nothing but the system's own libraries has to be there where the programs run.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(ZLIB_USE_STATIC_LIBS ON)

# Tests run where they are built.
set(CMAKE_CROSSCOMPILING_EMULATOR ${root}scripts/under-wine)
