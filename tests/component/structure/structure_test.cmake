# cmake -D FOLDER=scratch folder -P structure_test.cmake: pages that are like the components and pages that are not.
set(head "# Page\n\n[not; a row]\n| Folder | Target | For | Builds on |\n|---|---|---|---|\n")
set(ground "| `.` | `ground` | what; all [stand] on | |\n")
set(lower "| | `lower` | the middle | `ground` |\n")
set(upper "| | `upper` | the top | `lower`, `ground` |\n")

# page_is(words LOWER what it links UPPER what it links ROWS text): configuring fails and says so, or succeeds for ""
function(page_is words)
    cmake_parse_arguments(PARSE_ARGV 1 P "" "ROWS" "LOWER;UPPER")
    file(WRITE ${FOLDER}/page.md "${head}${P_ROWS}")
    execute_process(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/project -B ${FOLDER}/build
        -DPAGE=${FOLDER}/page.md "-DLOWER=${P_LOWER}" "-DUPPER=${P_UPPER}"
        RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE said)
    string(FIND "${said}" "${words}" found)
    if((words AND (status EQUAL 0 OR found LESS 0)) OR (NOT words AND NOT status EQUAL 0))
        message(SEND_ERROR "Expected \"${words}\", got status ${status} and\n${said}")
    endif()
endfunction()

page_is("" LOWER ground UPPER lower ground ROWS "${ground}${lower}${upper}")
page_is("" LOWER ground Threads::Threads UPPER ground lower ROWS "${ground}${lower}${upper}")
page_is("CMakeLists.txt:9: upper links ground\n" LOWER ground UPPER lower ground
    ROWS "${ground}${lower}| | `upper` | | `lower` |\n")
page_is("page.md:8: the row of upper names ground\n" LOWER ground UPPER lower ROWS "${ground}${lower}${upper}")
page_is("CMakeLists.txt:8: lower links upper\n" LOWER ground upper UPPER ground
    ROWS "${ground}| | `lower` | | `ground`, `upper` |\n| | `upper` | | `ground` |\n")
page_is("CMakeLists.txt:9: upper has no row in " LOWER ground UPPER lower ground ROWS "${ground}${lower}")
page_is("page.md:9: there is no component other\n" LOWER ground UPPER lower ground
    ROWS "${ground}${lower}${upper}| | `other` | | |\n")
page_is("CMakeLists.txt:7: ground is made here\n" LOWER ground UPPER lower ground
    ROWS "| `cellar` | `ground` | | |\n| `.` | `lower` | | `ground` |\n${upper}")
