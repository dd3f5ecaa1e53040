# Runs all commands of a page, README, that call the program; each must reach its targets.
cmake_minimum_required(VERSION 3.25)

file(READ ${README} text)
string(REGEX REPLACE "\\\\\n *" "" text "${text}")
string(REGEX MATCHALL "\n    nqDrive [^\n]*" commands "${text}")
list(LENGTH commands count)
if(count LESS 5)
    message(FATAL_ERROR "${README} has only ${count} commands")
endif()
foreach(command IN LISTS commands)
    string(REGEX REPLACE "^\n    nqDrive " "" arguments "${command}")
    separate_arguments(arguments UNIX_COMMAND "${arguments}")
    execute_process(COMMAND ${PROGRAM} --quiet --output ${OUTPUT} ${arguments}
        RESULT_VARIABLE status ERROR_VARIABLE complaint)
    if(NOT status EQUAL 0)
        message(SEND_ERROR "${command}: ${status}, ${complaint}")
    endif()
endforeach()
