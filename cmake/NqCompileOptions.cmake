# Options for the code of this project, and for it alone: nothing here reaches a consumer.
add_library(nqCompileOptions INTERFACE)
target_compile_options(nqCompileOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(NQ_WARNINGS_AS_ERRORS)
    target_compile_options(nqCompileOptions INTERFACE -Werror)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Several sources in one: GCC takes the unnamed namespace of each for one of a header.
    target_compile_options(nqCompileOptions INTERFACE -Wno-subobject-linkage)
endif()
# Functions in several versions, of which the program's loader takes the one that suits the processor (see
# NqRowOperations.h). GCC makes them where the C library has indirect functions; sanitizers don't go with them.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT NQ_SANITIZE)
    include(CheckCXXSourceCompiles)
    check_cxx_source_compiles("
        __attribute__((target_clones(\"arch=x86-64-v3\", \"default\"))) int twice(int x) { return x + x; }
        int main() { return twice(0); }" NQ_HAVE_TARGET_CLONES)
    if(NQ_HAVE_TARGET_CLONES)
        target_compile_definitions(nqCompileOptions INTERFACE NQ_HAVE_TARGET_CLONES)
    endif()
endif()
if(NQ_SANITIZE)
    target_compile_options(nqCompileOptions INTERFACE
        -fsanitize=${NQ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(nqCompileOptions INTERFACE -fsanitize=${NQ_SANITIZE})
endif()

# What all libraries of the project have in common.
function(nqSetUpLibrary target)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:nqCompileOptions>)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:include>)
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    target_compile_features(${target} PUBLIC cxx_std_20)
    # Exact ties and exact-zero tests must come out the same on every machine, in inline code too.
    target_compile_options(${target} PUBLIC -ffp-contract=off)
    # The straight-line vectoriser of GCC before 12.3 contracts all the same, where there is an instruction for it.
    target_compile_options(${target} PUBLIC
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,12.3>>:-fno-tree-slp-vectorize>)
    target_compile_definitions(${target} PRIVATE NQ_VERSION_STRING="${PROJECT_VERSION}")
endfunction()
