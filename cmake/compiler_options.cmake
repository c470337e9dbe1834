# The options of every target of ours.
add_library(xpon_compiler_options INTERFACE)
target_compile_options(xpon_compiler_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${XPON_DEVELOPMENT}>:-Werror>)

if(XPON_SANITIZERS)
    add_compile_options(-fsanitize=${XPON_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${XPON_SANITIZERS})
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
endif()
