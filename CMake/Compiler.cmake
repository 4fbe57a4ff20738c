# How every target is compiled: C++20, warnings are errors, no implicit conversions between bytes and text.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)

# Level 1 names functions and lines, which is all that a sanitizer's report or a backtrace shows; the variables of
# coroutines, which only a debugger asks for, take a quarter of the time of a build.
set(VESK_DEBUG_INFO 1 CACHE STRING "Level of -g: 1 for reports, 2 for a debugger")

find_program(VESK_CCACHE ccache)
if(VESK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${VESK_CCACHE}")
endif()

add_library(vesk_compiler INTERFACE)
target_compile_options(vesk_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wno-sign-conversion -Wdouble-promotion -Wold-style-cast -Wcast-qual
    -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi -Wformat=2 -Wimplicit-fallthrough -Wundef
    -fno-semantic-interposition -g${VESK_DEBUG_INFO})
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees uninitialised members in every optional that it inlines.
    target_compile_options(vesk_compiler INTERFACE -Wno-maybe-uninitialized)
    # Several exits of a coroutine share one frame, which this warning of g++ 12 mistakes for a leak of it.
    target_compile_options(vesk_compiler INTERFACE -Wduplicated-cond -Wlogical-op -Wno-mismatched-new-delete)
endif()
target_compile_definitions(vesk_compiler INTERFACE
    QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_USE_QSTRINGBUILDER QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(VESK_SANITIZERS)
    target_compile_options(vesk_compiler INTERFACE -fsanitize=${VESK_SANITIZERS} -fno-omit-frame-pointer -O1)
    if(VESK_SANITIZERS MATCHES "undefined")
        target_compile_options(vesk_compiler INTERFACE -fno-sanitize-recover=undefined)
    endif()
    target_compile_definitions(vesk_compiler INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(vesk_compiler INTERFACE -fsanitize=${VESK_SANITIZERS})
endif()

if(VESK_TIDY)
    find_program(VESK_CLANG_TIDY NAMES clang-tidy-19 REQUIRED)
    # Ninja does not know that the results depend on the lists of checks. A definition that nobody reads brings them into
    # every command line: another list, and every file is looked at again.
    set(_lists "${CMAKE_SOURCE_DIR}/.clang-tidy" "${CMAKE_SOURCE_DIR}/Tests/.clang-tidy")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${_lists})
    set(_hashes "")
    foreach(_list IN LISTS _lists)
        file(SHA256 "${_list}" _hash)
        string(APPEND _hashes "${_hash}")
    endforeach()
    set(CMAKE_CXX_CLANG_TIDY
        "${VESK_CLANG_TIDY};--quiet;--extra-arg=-Wno-unknown-warning-option;--extra-arg=-DVESK_CHECKS=x${_hashes}")
endif()
