# Builds and runs the consumer with what pkg-config says of an installation. PREFIX is the installation's, LIBDIR the
# folder of libraries below it, SOURCE the consumer's, MODEL what it reads, COMPILER compiles, WORK is a folder to work in.
cmake_minimum_required(VERSION 3.25)

find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs nqUrdf nqControlLoop
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${COMPILER} -std=c++20 ${SOURCE} ${flags} -Wl,-rpath,${PREFIX}/${LIBDIR} -o ${WORK}/consumer
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/consumer ${MODEL} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PKG_CONFIG} --modversion nqControlCore
    OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT version STREQUAL VERSION)
    message(SEND_ERROR "pkg-config says ${version}, but it is ${VERSION}")
endif()
