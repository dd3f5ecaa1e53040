# Options for the code of this project, and for it alone: nothing here reaches a consumer.
add_library(nqCompileOptions INTERFACE)
target_compile_options(nqCompileOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(NQ_WARNINGS_AS_ERRORS)
    target_compile_options(nqCompileOptions INTERFACE -Werror)
endif()
# Functions in several versions, of which the program's loader takes the one that suits the processor (see
# NqRowOperations.h). GCC makes them where the C library has indirect functions; sanitizers don't go with them.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT NQ_SANITIZE)
    include(CheckCXXSourceCompiles)
    check_cxx_source_compiles("
        __attribute__((target_clones(\"avx2\", \"default\"))) int twice(int x) { return x + x; }
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
