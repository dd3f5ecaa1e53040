# Checks that each component installs what belongs to it and nothing else. BUILD is the build folder, PREFIX a folder to
# install to, LIBDIR the folder of libraries below it.
cmake_minimum_required(VERSION 3.25)

function(nqExpect component)
    cmake_parse_arguments(PARSE_ARGV 1 files "" "" "THERE;NOT_THERE")
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component ${component} --prefix ${PREFIX}/${component}
        OUTPUT_QUIET RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "component ${component} does not install")
    endif()
    foreach(file IN LISTS files_THERE)
        if(NOT EXISTS ${PREFIX}/${component}/${file})
            message(SEND_ERROR "component ${component} lacks ${file}")
        endif()
    endforeach()
    foreach(file IN LISTS files_NOT_THERE)
        if(EXISTS ${PREFIX}/${component}/${file})
            message(SEND_ERROR "component ${component} has ${file}")
        endif()
    endforeach()
endfunction()

file(REMOVE_RECURSE ${PREFIX})
nqExpect(runtime THERE bin/nqDrive NOT_THERE include share/nqControlCore ${LIBDIR}/cmake ${LIBDIR}/pkgconfig)
nqExpect(development
    THERE include/nqControlCore/core/NqCoreVelocityControlTool.h include/nqControlLoop/NqControlLoop.h
          ${LIBDIR}/cmake/nqControlCore/nqControlCoreConfig.cmake ${LIBDIR}/pkgconfig/nqControlCore.pc
    NOT_THERE bin share/nqControlCore)
nqExpect(examples THERE share/nqControlCore/models/arm7.urdf share/nqControlCore/examples/11_control_loop.cpp
    NOT_THERE bin include ${LIBDIR})
