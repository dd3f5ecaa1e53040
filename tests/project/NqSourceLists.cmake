# Checks that every source file of the project belongs to a target, since a test that is not built never fails.
# FOLDER is the project's, LIST names the file with the sources of all targets.
cmake_minimum_required(VERSION 3.25)

file(STRINGS ${LIST} listed)
foreach(part nqControlCore nqControlLoop nqDrive examples tests benchmarks)
    file(GLOB_RECURSE sources ${FOLDER}/${part}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/tests/project/consumer/")
    foreach(source IN LISTS sources)
        if(NOT source IN_LIST listed)
            message(SEND_ERROR "${source} is in no target's list of sources")
        endif()
    endforeach()
endforeach()
