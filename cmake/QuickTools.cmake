# ccache and mold make a build quicker where they are installed; nothing needs them, and what they make is not shipped (the
# packages are built without). What is chosen by hand wins: CMAKE_CXX_COMPILER_LAUNCHER, or a linker in LDFLAGS.
option(STATEMANAGER_CCACHE "Compile through ccache where it is installed" ON)
option(STATEMANAGER_MOLD "Link with mold where it is installed; a cross build never does" ON)

# The launcher brings ccache's settings along, so that nobody's own are needed. Paths below the source are relative and the
# build directory is not part of the key: what one clone has compiled is used by the next. The sloppiness is what
# precompiled headers take.
find_program(STATEMANAGER_CCACHE_PROGRAM ccache)
mark_as_advanced(STATEMANAGER_CCACHE_PROGRAM)
if(STATEMANAGER_CCACHE AND STATEMANAGER_CCACHE_PROGRAM)
    foreach(language IN ITEMS C CXX)
        if(NOT DEFINED CMAKE_${language}_COMPILER_LAUNCHER)
            set(CMAKE_${language}_COMPILER_LAUNCHER env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=true
                CCACHE_SLOPPINESS=pch_defines,time_macros
                ${STATEMANAGER_CCACHE_PROGRAM})
        endif()
    endforeach()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # With the time in it no two precompiled headers are the same.
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
endif()

find_program(STATEMANAGER_MOLD_PROGRAM ld.mold)
mark_as_advanced(STATEMANAGER_MOLD_PROGRAM)
if(STATEMANAGER_MOLD AND STATEMANAGER_MOLD_PROGRAM AND NOT CMAKE_CROSSCOMPILING
   AND NOT CMAKE_EXE_LINKER_FLAGS MATCHES "-fuse-ld=")
    include(CheckLinkerFlag)
    check_linker_flag(CXX -fuse-ld=mold STATEMANAGER_COMPILER_KNOWS_MOLD)
    if(STATEMANAGER_COMPILER_KNOWS_MOLD)
        add_link_options(-fuse-ld=mold)
    endif()
endif()
