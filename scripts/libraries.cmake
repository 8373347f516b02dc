# The libraries that Brimlet is built with, as targets of the same names on every system:
# simdjson::simdjson, brimlet::utf8proc, brimlet::terminal and, on Linux, brimlet::property_list.
#
# A Mac builds simdjson and utf8proc itself, from sources that are named by their commits: a
# hardened program must not load a library with another signature, and Homebrew's archives are made
# for one processor and one release of macOS. Linux uses the distribution's libraries, or the same
# pinned sources with BRIMLET_PINNED_LIBRARIES. The sources are fetched unless $BRIMLET_DEPENDENCIES
# names a folder that holds both.

option(BRIMLET_PINNED_LIBRARIES "Build simdjson and utf8proc from pinned sources" ${APPLE})

if(BRIMLET_PINNED_LIBRARIES)
    include(FetchContent)
    if(NOT "$ENV{BRIMLET_DEPENDENCIES}" STREQUAL "")
        foreach(LIBRARY simdjson utf8proc)
            string(TOUPPER ${LIBRARY} NAME)
            set(FETCHCONTENT_SOURCE_DIR_${NAME} $ENV{BRIMLET_DEPENDENCIES}/${LIBRARY}
                CACHE PATH "The sources of ${LIBRARY}, where they need not be fetched")
        endforeach()
    endif()
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)  # What is set here counts for their options, too.
    set(BUILD_SHARED_LIBS OFF)
    set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)  # Nothing is gained for a single source file.
    set(UTF8PROC_INSTALL OFF)
    set(UTF8PROC_ENABLE_TESTING OFF)
    # FetchContent by itself would clone the whole history. SYSTEM keeps warnings to this project's
    # own code.
    function(declare_library NAME)
        cmake_parse_arguments(PARSE_ARGV 1 SOURCE "" "GIT_REPOSITORY;GIT_TAG" "")
        FetchContent_Declare(${NAME} SYSTEM
            DOWNLOAD_COMMAND git init --quiet <SOURCE_DIR>
            COMMAND git -C <SOURCE_DIR> fetch --quiet --depth 1 ${SOURCE_GIT_REPOSITORY}
                    ${SOURCE_GIT_TAG}
            COMMAND git -C <SOURCE_DIR> checkout --quiet FETCH_HEAD)
    endfunction()
    declare_library(simdjson
        GIT_REPOSITORY https://github.com/simdjson/simdjson.git
        GIT_TAG cdeb069ad1e8cb2fb479cbb22695cb666cea99ac)  # 4.6.7
    declare_library(utf8proc
        GIT_REPOSITORY https://github.com/JuliaStrings/utf8proc.git
        GIT_TAG e5e799221b45bbb90f5fdc5c69b6b8dfbf017e78)  # 2.11.3
    FetchContent_MakeAvailable(simdjson utf8proc)
    add_library(brimlet::utf8proc ALIAS utf8proc)

    # simdjson defines this in every build, although its headers do so where nothing is optimized. A
    # release must not have these checks: they write to memory without looking whether there is any.
    foreach(PROPERTY COMPILE_DEFINITIONS INTERFACE_COMPILE_DEFINITIONS)
        get_target_property(DEFINITIONS simdjson ${PROPERTY})
        list(REMOVE_ITEM DEFINITIONS SIMDJSON_DEVELOPMENT_CHECKS)
        set_property(TARGET simdjson PROPERTY ${PROPERTY} "${DEFINITIONS}")
    endforeach()

    # Their licences are installed with the programs, and so are those of the code in simdjson that
    # has other authors.
    file(READ ${simdjson_SOURCE_DIR}/LICENSE-MIT TEXT)
    foreach(SOURCE src/internal/isadetection.h src/to_chars.cpp)
        file(READ ${simdjson_SOURCE_DIR}/${SOURCE} CODE)
        if(NOT CODE MATCHES "/[*][^*]*Copyright[^*]*[*]/")
            message(FATAL_ERROR "The licence in simdjson's ${SOURCE} is not found")
        endif()
        string(APPEND TEXT "\n${CMAKE_MATCH_0}\n")
    endforeach()
    file(CONFIGURE OUTPUT licences/simdjson.txt CONTENT "${TEXT}" @ONLY)
    configure_file(${utf8proc_SOURCE_DIR}/LICENSE.md licences/utf8proc.md COPYONLY)
    set(LICENCES ${PROJECT_BINARY_DIR}/licences/simdjson.txt
                 ${PROJECT_BINARY_DIR}/licences/utf8proc.md)
else()
    find_package(simdjson REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET GLOBAL libutf8proc)
    add_library(brimlet::utf8proc ALIAS PkgConfig::UTF8PROC)
endif()

add_library(brimlet_terminal INTERFACE)
add_library(brimlet::terminal ALIAS brimlet_terminal)
if(APPLE)
    # The name alone selects the system's library. A search might find another one, for one processor.
    target_link_libraries(brimlet_terminal INTERFACE ncurses)
else()
    # Linked statically: a shared library would be resident even in calls that show no menu.
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
