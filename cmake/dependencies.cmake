# Every library from outside, in one place. Read by the installed platform's package file too.
find_package(PkgConfig REQUIRED)
find_package(fmt 9 REQUIRED)
find_package(Boost 1.81 REQUIRED)
pkg_check_modules(cjson REQUIRED IMPORTED_TARGET GLOBAL libcjson)
pkg_check_modules(deflate REQUIRED IMPORTED_TARGET GLOBAL libdeflate)
pkg_check_modules(lmdb REQUIRED IMPORTED_TARGET GLOBAL lmdb)
pkg_check_modules(systemd REQUIRED IMPORTED_TARGET GLOBAL libsystemd)

# zlog and Linux-PAM ship no description of themselves. ZeroMQ's names folders of its own dependencies, which no source
# reads, and CMake reads it otherwise the second time than the first: all that includes zmq.h would be built twice.
function(xpon_find_plain_library target header library)
    if(TARGET ${target})
        return()
    endif()
    find_path(${library}_INCLUDE_DIR ${header} REQUIRED)
    find_library(${library}_LIBRARY ${library} REQUIRED)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} INTERFACE ${${library}_INCLUDE_DIR})
    target_link_libraries(${target} INTERFACE ${${library}_LIBRARY})
endfunction()
xpon_find_plain_library(xpon::zlog_c zlog.h zlog)
xpon_find_plain_library(xpon::pam_c security/pam_appl.h pam)
xpon_find_plain_library(xpon::zmq_c zmq.h zmq)
