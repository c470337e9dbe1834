# xpon_library(NAME name [EXPORTED] SOURCES ... [LINKS ...] [PRIVATE_LINKS ...])
#
# One folder, one static library. EXPORTED libraries are part of the installed platform: they carry the alias
# xpon::NAME, which is also their name after find_package(xpon_platform).
function(xpon_library)
    cmake_parse_arguments(LIB "EXPORTED" "NAME" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    add_library(xpon_${LIB_NAME} STATIC ${LIB_SOURCES})
    add_library(xpon::${LIB_NAME} ALIAS xpon_${LIB_NAME})
    set_target_properties(xpon_${LIB_NAME} PROPERTIES EXPORT_NAME ${LIB_NAME})
    target_link_libraries(xpon_${LIB_NAME}
        PUBLIC ${LIB_LINKS}
        PRIVATE ${LIB_PRIVATE_LINKS} $<BUILD_INTERFACE:xpon_compiler_options>)
    if(LIB_EXPORTED)
        install(TARGETS xpon_${LIB_NAME} EXPORT xpon_platform ARCHIVE COMPONENT platform)
    endif()
endfunction()
