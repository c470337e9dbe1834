# The options of every target of ours.
add_library(xpon_compiler_options INTERFACE)
target_compile_options(xpon_compiler_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${XPON_DEVELOPMENT}>:-Werror>
    # g++ 12 finds faults in the standard library's own strings when they come out of a precompiled header.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds -Wno-stringop-overread>
    # Sources that are compiled as one look like headers to g++, in which no member may come from an unnamed namespace.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:${CMAKE_UNITY_BUILD}>>:-Wno-subobject-linkage>
    # What g++'s library uses of its own deprecated parts is not ours to change.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-deprecated-declarations>)

# For what test programs themselves compile: optimised, their assertions take longer to compile than much of what they
# test. Under the sanitizers how they use memory is still watched.
set(xpon_test_options -O0)
if(XPON_SANITIZERS)
    list(APPEND xpon_test_options -fno-sanitize=undefined)
    add_compile_options(-fsanitize=${XPON_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${XPON_SANITIZERS})
    # Through its instrumentation g++ 12 sees uninitialised values in <regex> that are none.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

# For what waits for people and the network, not for the processor: where somebody waits for the compiler it may do with
# less of it.
set(XPON_COMMAND_OPTIONS "" CACHE STRING "Compiler options of the commands, the console's gateway and what makes documents")

# For all sources, programs too, so that the precompiled headers fit them all.
if(XPON_SHARED_PLATFORM)
    add_compile_options(-fPIC)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_CURRENT_SOURCE_DIR}/cmake/through_ccache ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
    add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
endif()
