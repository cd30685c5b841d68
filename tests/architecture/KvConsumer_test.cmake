# Builds a project that adds this one as a subdirectory: a consumer that sets nothing compiles, and of the
# libraries only those are built that its programs link. What was compiled by an earlier run stays.
#
#   cmake -D Consumer=FOLDER -D KvImport=FOLDER -D Build=FOLDER [-D Generator=NAME] [-D Options=OPTION;...]
#         -P KvConsumer_test.cmake
#
# Options are those of the build around the test, whose objects the compiler's cache then has.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE Result OUTPUT_VARIABLE Output ERROR_VARIABLE Output)
    if(NOT Result EQUAL 0)
        list(JOIN ARGN " " Command)
        message(FATAL_ERROR "${Command}\nended with ${Result}:\n${Output}")
    endif()
    set(Output "${Output}" PARENT_SCOPE)
endfunction()

function(find_archives Result)
    file(GLOB_RECURSE Found "${Build}/*${CMAKE_STATIC_LIBRARY_SUFFIX}")
    set(${Result} "${Found}" PARENT_SCOPE)
endfunction()

# Builds the target and compares all archives that exist then with those that it needs.
function(expect_archives Target)
    run("${CMAKE_COMMAND}" --build "${Build}" --target ${Target} --parallel 2)
    find_archives(Paths)
    set(Built)
    foreach(Path IN LISTS Paths)
        cmake_path(GET Path FILENAME Name)
        list(APPEND Built ${Name})
    endforeach()
    file(READ "${Build}/${Target}.txt" Needed)
    list(SORT Built)
    list(SORT Needed)
    if(NOT Built STREQUAL Needed)
        message(SEND_ERROR "The target ${Target} of a consumer built\n  ${Built}\nand needs\n  ${Needed}")
    endif()
endfunction()

set(CMAKE_STATIC_LIBRARY_SUFFIX ".a")
list(APPEND Options "-DKvImport=${KvImport}")
if(Generator)
    list(APPEND Options "-G${Generator}")
endif()

# A library that should not be built must not be there from an earlier run either.
find_archives(Old)
if(Old)
    file(REMOVE ${Old})
endif()
run("${CMAKE_COMMAND}" -S "${Consumer}" -B "${Build}" ${Options})
expect_archives(text_to_memory)
expect_archives(all)

file(GLOB_RECURSE Programs "${Build}/KvImport/bin/*")
if(Programs)
    message(SEND_ERROR "Nobody asked for these programs:\n  ${Programs}")
endif()

file(WRITE "${Build}/orders.csv" "1,Rome\r\n2,Bern\r\n")
run("${Build}/text_to_memory" "${Build}/orders.csv")
if(NOT Output STREQUAL "Rome\n")
    message(SEND_ERROR "The import of a consumer printed '${Output}'")
endif()
