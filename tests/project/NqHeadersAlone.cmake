# Checks that each installed header of a folder compiles alone. For one that is the first include of its own source,
# the build has shown it; the others are compiled here, with nothing but the installed headers to include from.
# PREFIX is the installation's, LIBRARY the folder below its include, FOLDER is below that, SOURCES is the library's
# folder in the source tree, COMPILER compiles.
cmake_minimum_required(VERSION 3.25)

set(root ${PREFIX}/include/${LIBRARY})
if(FOLDER STREQUAL ".")
    file(GLOB_RECURSE headers RELATIVE ${root} ${root}/*.h)
else()
    file(GLOB_RECURSE headers RELATIVE ${root} ${root}/${FOLDER}/*.h)
endif()
if(NOT headers)
    message(FATAL_ERROR "no headers in ${root}/${FOLDER}")
endif()
foreach(header IN LISTS headers)
    string(REGEX REPLACE "[.]h$" ".cpp" source ${SOURCES}/${header})
    if(EXISTS ${source})
        file(STRINGS ${source} first REGEX "^ *# *include" LIMIT_COUNT 1)
        if(NOT first STREQUAL "#include <${LIBRARY}/${header}>")
            message(SEND_ERROR "${source} does not include its own header first")
        endif()
        continue()
    endif()
    execute_process(
        COMMAND ${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Werror -I ${PREFIX}/include
                -include ${root}/${header} -x c++ /dev/null
        RESULT_VARIABLE result ERROR_VARIABLE messages)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "${header} does not compile alone:\n${messages}")
    endif()
endforeach()
