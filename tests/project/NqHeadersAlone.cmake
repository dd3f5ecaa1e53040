# Compiles each installed header of a folder alone, with nothing but the installed headers to include from.
# PREFIX is the installation's, FOLDER is below its include/nqControlCore, COMPILER compiles.
cmake_minimum_required(VERSION 3.25)

set(place ${PREFIX}/include/nqControlCore/${FOLDER})
file(GLOB headers ${place}/*.h)
if(NOT headers)
    message(FATAL_ERROR "no headers in ${place}")
endif()
foreach(header IN LISTS headers)
    execute_process(
        COMMAND ${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Werror -I ${PREFIX}/include
                -include ${header} -x c++ /dev/null
        RESULT_VARIABLE result ERROR_VARIABLE messages)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "${header} does not compile alone:\n${messages}")
    endif()
endforeach()
