# The engine's IDL compiler: one C struct and one description for each type.
find_program(IDLC_PROGRAM idlc REQUIRED)

# add_interface_types(NAME target IDL file...)
#   Compiles IDL files into a library; <file>.idl gives the header <file>.h. They may include rpc_headers.idl, the headers
#   of requests and replies. They have no type information (-t): making a topic that has some, the engine (0.10.2) looks
#   through the known endpoints of others, also at those that it has just freed.
function(add_interface_types)
    cmake_parse_arguments(PARSE_ARGV 0 T "" "NAME" "IDL")
    set(out ${CMAKE_CURRENT_BINARY_DIR}/${T_NAME})
    set(include_dir ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ara/com/dds)
    set(generated)
    foreach(idl IN LISTS T_IDL)
        cmake_path(ABSOLUTE_PATH idl NORMALIZE)
        cmake_path(GET idl STEM stem)
        add_custom_command(OUTPUT ${out}/${stem}.c ${out}/${stem}.h
            COMMAND ${CMAKE_COMMAND} -E make_directory ${out}
            COMMAND ${IDLC_PROGRAM} -t -f case-sensitive -W no-implicit-extensibility -I ${include_dir} -o ${out} ${idl}
            DEPENDS ${idl} ${include_dir}/rpc_headers.idl VERBATIM)
        list(APPEND generated ${out}/${stem}.c ${out}/${stem}.h)
    endforeach()
    add_library(${T_NAME} STATIC ${generated})
    target_include_directories(${T_NAME} SYSTEM PUBLIC ${out})
    if(NOT "rpc_headers.idl" IN_LIST T_IDL)
        target_link_libraries(${T_NAME} PUBLIC ara_com_dds_types)
    endif()
    target_link_libraries(${T_NAME} PUBLIC PkgConfig::CYCLONEDDS)
endfunction()
