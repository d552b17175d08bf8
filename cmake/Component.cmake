# A component is one folder: one target that sees its own headers and those of the components that it depends on, and
# no others. Each component's headers are linked into an include directory of its own below the build tree, so that
# including a header of a component that is not among the dependencies does not compile.

# add_component(NAME target ROOT dir FOLDER path [SOURCES ...] [HEADERS ...] [DEPENDS ...] [PRIVATE_DEPENDS ...]
#               [OBJECTS])
#   NAME             the target
#   ROOT             directory from which include paths are counted, e.g. ${CMAKE_SOURCE_DIR}/src
#   FOLDER           the component's folder below ROOT; headers are included as <FOLDER>/<header>
#   SOURCES, HEADERS relative to that folder
#   OBJECTS          no archive of its own: its objects go into each library or program that links it directly
#   DEPENDS          components that its headers use;  PRIVATE_DEPENDS  those that only its sources use
# Where the variable `sources_at_a_time` is set, so many sources are compiled as one; not in a Debug build, whose compile
# commands are there for clang-tidy. What stands in their unnamed namespaces has a name of its own in the component.
include(CompileTogether)
function(add_component)
    cmake_parse_arguments(PARSE_ARGV 0 C "OBJECTS" "NAME;ROOT;FOLDER" "SOURCES;HEADERS;DEPENDS;PRIVATE_DEPENDS")
    set(include_dir ${CMAKE_BINARY_DIR}/include/${C_NAME})
    set(folder ${C_ROOT}/${C_FOLDER})
    set_property(GLOBAL APPEND PROPERTY components ${C_NAME})
    foreach(header IN LISTS C_HEADERS)
        get_filename_component(parent ${include_dir}/${C_FOLDER}/${header} DIRECTORY)
        file(MAKE_DIRECTORY ${parent})
        file(CREATE_LINK ${folder}/${header} ${include_dir}/${C_FOLDER}/${header} SYMBOLIC)
    endforeach()
    if(C_SOURCES)
        list(TRANSFORM C_SOURCES PREPEND ${folder}/)
        set(kind STATIC)
        if(C_OBJECTS)
            set(kind OBJECT)
        endif()
        if(sources_at_a_time AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
            compile_together(C_SOURCES ${C_NAME} ${sources_at_a_time} ${C_SOURCES})
        endif()
        add_library(${C_NAME} ${kind} ${C_SOURCES})
        target_include_directories(${C_NAME} PUBLIC ${include_dir})
        target_link_libraries(${C_NAME} PUBLIC ${C_DEPENDS} PRIVATE ${C_PRIVATE_DEPENDS} project_options)
    else()
        add_library(${C_NAME} INTERFACE)
        target_include_directories(${C_NAME} INTERFACE ${include_dir})
        target_link_libraries(${C_NAME} INTERFACE ${C_DEPENDS})
    endif()
endfunction()
