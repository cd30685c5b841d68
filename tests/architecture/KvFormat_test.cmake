# Runs the check of the format over files that break its rules: each place is told, and nothing else.
#
#   cmake -D Check=FILE -D Folder=FOLDER -P KvFormat_test.cmake

file(REMOVE_RECURSE "${Folder}")
string(REPEAT "ö" 107 Umlauts)
string(REPEAT "x" 111 TooLong)
file(WRITE "${Folder}/fine/Fits.cpp" "// ${Umlauts}\n")
file(WRITE "${Folder}/fine/Empty.h" "")
file(WRITE "${Folder}/fine/Other.txt" "a\tb \n\n")
file(WRITE "${Folder}/Blanks.cpp" "int A; \nint B;\r\n")
file(WRITE "${Folder}/Long.cpp" "// ${Umlauts}x\n\n${TooLong}\n")
file(WRITE "${Folder}/NoEnd.h" "int A;")
file(WRITE "${Folder}/Tab.h" "\tint A;\n\n")
execute_process(COMMAND printf "\\344" OUTPUT_FILE "${Folder}/Latin1.h")

execute_process(COMMAND "${Check}" "${Folder}" RESULT_VARIABLE Result OUTPUT_VARIABLE Output)
set(Expected "Long.cpp:1: is longer than 110 characters
Long.cpp:3: is longer than 110 characters
Tab.h:1: has a tab
Blanks.cpp:1: ends in blanks or a carriage return
Blanks.cpp:2: ends in blanks or a carriage return
Latin1.h: is not valid UTF-8
Latin1.h: does not end in a newline
NoEnd.h: does not end in a newline
Tab.h: ends in an empty line
")
if(NOT Result EQUAL 1 OR NOT Output STREQUAL Expected)
    message(SEND_ERROR "ended with ${Result}, not 1:\n${Output}")
endif()

file(REMOVE_RECURSE "${Folder}")
file(WRITE "${Folder}/fine/Fits.cpp" "// ${Umlauts}\n")
execute_process(COMMAND "${Check}" "${Folder}" RESULT_VARIABLE Result OUTPUT_VARIABLE Output)
if(NOT Result EQUAL 0 OR NOT Output STREQUAL "")
    message(SEND_ERROR "ended with ${Result}, not 0:\n${Output}")
endif()
