# Flags that every target of the project is built with, and nothing that is installed inherits.
add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE -Wall -Wextra -Werror -Wshadow -Wcast-qual -Wconversion -Wformat=2
    -Wimplicit-fallthrough "$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Wold-style-cast>")
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(project_options INTERFACE -Wthread-safety -Wthread-safety-beta
        -Wreserved-identifier)
endif()

set(STATEMANAGER_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread; empty for none")
if(STATEMANAGER_SANITIZE)
    add_compile_options(-fsanitize=${STATEMANAGER_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${STATEMANAGER_SANITIZE})
    # Part of each program: how it ends when something is found.
    add_library(sanitizer_options OBJECT ${CMAKE_CURRENT_LIST_DIR}/../deploy/sanitizers/options.cpp)
    target_sources(project_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:sanitizer_options>>)
    if(STATEMANAGER_SANITIZE MATCHES "undefined")
        # The check of virtual tables opens a pipe; with a full descriptor table, which some tests make, it sees errors
        # where there are none.
        add_compile_options(-fno-sanitize=vptr)
    endif()
else()
    # Hardening for what is shipped; the sanitizers bring their own checks.
    add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>
        -fstack-protector-strong)
    add_link_options(-Wl,-z,relro,-z,now)
endif()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# For add_compile_options in folders of programs whose speed does not matter: their headers (command line, JSON, tests)
# take half the time to compile this way. What belongs to tests and bench alone takes two thirds of that again.
set(quickly_compiled $<$<NOT:$<CONFIG:Debug>>:-O1> $<$<NOT:$<CONFIG:Debug>>:-g1>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The compiler looks for memory that it could use again so seldom that it takes some 500 MiB for the largest source.
    list(APPEND quickly_compiled "$<$<NOT:$<CONFIG:Debug>>:SHELL:--param ggc-min-expand=200>"
        "$<$<NOT:$<CONFIG:Debug>>:SHELL:--param ggc-min-heapsize=524288>")
endif()
set(most_quickly_compiled ${quickly_compiled} $<$<NOT:$<CONFIG:Debug>>:-Og>)
