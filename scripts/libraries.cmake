# The libraries that Brimlet is built with, as targets of the same names on every system:
# simdjson::simdjson, brimlet::utf8proc, brimlet::terminal and, on Linux, brimlet::property_list.
#
# A Mac builds simdjson and utf8proc itself, from sources that are named by their commits: a
# hardened program may load no library that others signed, and Homebrew's archives are made for one
# processor and one release of macOS. Linux takes the distribution's, or the same pinned sources
# with BRIMLET_PINNED_LIBRARIES. FETCHCONTENT_SOURCE_DIR_SIMDJSON and _UTF8PROC name folders that
# hold the sources already.

option(BRIMLET_PINNED_LIBRARIES "Build simdjson and utf8proc from pinned sources" ${APPLE})

if(BRIMLET_PINNED_LIBRARIES)
    include(FetchContent)
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)  # What is set here counts for their options, too.
    set(BUILD_SHARED_LIBS OFF)
    set(UTF8PROC_INSTALL OFF)
    set(UTF8PROC_ENABLE_TESTING OFF)
    # SYSTEM: warnings are for this project's own code.
    FetchContent_Declare(simdjson SYSTEM
        GIT_REPOSITORY https://github.com/simdjson/simdjson.git
        GIT_TAG cdeb069ad1e8cb2fb479cbb22695cb666cea99ac)  # 4.6.7
    FetchContent_Declare(utf8proc SYSTEM
        GIT_REPOSITORY https://github.com/JuliaStrings/utf8proc.git
        GIT_TAG e5e799221b45bbb90f5fdc5c69b6b8dfbf017e78)  # 2.11.3
    foreach(LIBRARY simdjson utf8proc)
        FetchContent_GetProperties(${LIBRARY})
        if(NOT ${LIBRARY}_POPULATED)
            FetchContent_Populate(${LIBRARY})
            # Nothing of theirs is installed, and only what is linked in is built.
            add_subdirectory(${${LIBRARY}_SOURCE_DIR} ${${LIBRARY}_BINARY_DIR} EXCLUDE_FROM_ALL SYSTEM)
        endif()
    endforeach()
    add_library(brimlet::utf8proc ALIAS utf8proc)
    # Their licence texts go wherever the programs go.
    set(LICENCES_OF_LIBRARIES simdjson ${simdjson_SOURCE_DIR}/LICENSE-MIT
                              utf8proc ${utf8proc_SOURCE_DIR}/LICENSE.md)
else()
    find_package(simdjson REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET GLOBAL libutf8proc)
    add_library(brimlet::utf8proc ALIAS PkgConfig::UTF8PROC)
endif()

add_library(brimlet_terminal INTERFACE)
add_library(brimlet::terminal ALIAS brimlet_terminal)
if(APPLE)
    find_package(Curses REQUIRED)
    target_include_directories(brimlet_terminal SYSTEM INTERFACE ${CURSES_INCLUDE_DIRS})
    target_link_libraries(brimlet_terminal INTERFACE ${CURSES_LIBRARIES})
else()
    # Linked in: as a shared library it would be resident in the calls that show no menu, too.
    find_path(NCURSES_INCLUDES ncurses.h REQUIRED)
    find_library(NCURSES_LIBRARY libncursesw.a REQUIRED)
    find_library(TERMINFO_LIBRARY libtinfo.a REQUIRED)
    target_include_directories(brimlet_terminal SYSTEM INTERFACE ${NCURSES_INCLUDES})
    target_link_libraries(brimlet_terminal INTERFACE ${NCURSES_LIBRARY} ${TERMINFO_LIBRARY})
endif()

if(NOT APPLE)
    find_package(pugixml REQUIRED)
    add_library(brimlet::property_list ALIAS pugixml::static)
endif()
