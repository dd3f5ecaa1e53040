# Options for the code of this project, and for it alone: nothing here reaches a consumer.
add_library(nqCompileOptions INTERFACE)
target_compile_options(nqCompileOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(NQ_WARNINGS_AS_ERRORS)
    target_compile_options(nqCompileOptions INTERFACE -Werror)
endif()
if(NQ_SANITIZE)
    target_compile_options(nqCompileOptions INTERFACE
        -fsanitize=${NQ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(nqCompileOptions INTERFACE -fsanitize=${NQ_SANITIZE})
endif()
