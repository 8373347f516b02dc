# Compiles for macOS 13 on another system, for the processor BRIMLET_PROCESSOR (aarch64, x86_64), with
# the tools that scripts/check-macos has put into build/macos.

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES BRIMLET_PROCESSOR)
set(CMAKE_INSTALL_LIBDIR lib)  # Else asked of a compiler that is not known so early.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${BRIMLET_PROCESSOR})

cmake_path(SET FOLDER NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/macos)
set(COMPILER ${FOLDER}/package/zig)
set(TARGET -target ${BRIMLET_PROCESSOR}-macos.13.0)
set(CMAKE_C_COMPILER ${COMPILER} cc ${TARGET})
set(CMAKE_CXX_COMPILER ${COMPILER} c++ ${TARGET})
set(CMAKE_OBJCXX_COMPILER ${CMAKE_CURRENT_LIST_DIR}/objcxx ${COMPILER} c++ ${TARGET})
set(CMAKE_AR llvm-ar)
set(CMAKE_RANLIB llvm-ranlib)
set(CMAKE_INSTALL_NAME_TOOL true)  # Asked for, and not used.
set(CMAKE_CXX_FLAGS_INIT "-isystem ${FOLDER}/include")
set(CMAKE_OBJCXX_FLAGS_INIT
    "${CMAKE_CXX_FLAGS_INIT} -isystem $ENV{BRIMLET_DEPENDENCIES}/simdjson/include")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${FOLDER}/lib -F${FOLDER}/lib -lpugixml")
