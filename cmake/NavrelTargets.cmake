# How every target of the tree is made: one function a kind, so that warnings, guard macros,
# sanitizers and test registration are the same everywhere.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

add_library(navrel_options INTERFACE)
target_include_directories(navrel_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(navrel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-qual -Wformat=2 -Wundef -Wnull-dereference
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    $<$<BOOL:${NAVREL_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(navrel_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CONTEXTLESS_CONNECT QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_STRICT_ITERATORS)
if(NAVREL_SANITIZE)
    target_compile_options(navrel_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(navrel_options INTERFACE -fsanitize=address,undefined)
endif()
if(NAVREL_BUILD_FUZZERS)
    target_compile_options(navrel_options INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(navrel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# navrel_add_library(NAME SOURCES file... [LINK library...] [OPTIMIZE_ACROSS_FILES])
# One layer, or one part of a layer, as a static library. OPTIMIZE_ACROSS_FILES is for those that do
# little at a time but often: a frame passes through many small functions of several files.
function(navrel_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMIZE_ACROSS_FILES" "" "SOURCES;LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC navrel_options ${arg_LINK})
    if(arg_OPTIMIZE_ACROSS_FILES AND NAVREL_LINK_TIME_OPTIMIZATION)
        set_target_properties(${name} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
        # Qt's hash, which is no longer read as a system header then, looks as if it might grow
        # without bound.
        target_link_options(${name} INTERFACE
            $<$<CXX_COMPILER_ID:GNU>:-Wno-alloc-size-larger-than>)
    endif()
endfunction()

# navrel_add_executable(NAME SOURCES file... [LINK library...])
function(navrel_add_executable name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK})
endfunction()

# navrel_add_tests(NAME SOURCES file... [LINK library...] [OWN_NETWORK | WIDGETS]
#                  [TIMEOUT seconds])
# One binary a folder, one ctest entry a test case. OWN_NETWORK runs every test of the binary in a
# network namespace of its own, so that fixed ports never collide; WIDGETS gives it an application
# with windows, which nobody sees.
function(navrel_add_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_NETWORK;WIDGETS" "TIMEOUT" "SOURCES;LINK")
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set(main navrel_test_main)
    if(arg_OWN_NETWORK)
        set(main navrel_test_main_own_network)
    elseif(arg_WIDGETS)
        set(main navrel_test_main_widgets)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK} ${main} GTest::gmock)
    if(NAVREL_PRECOMPILE_HEADERS)
        target_precompile_headers(${name} REUSE_FROM navrel_test_main)
    endif()
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT ${arg_TIMEOUT})
endfunction()

# navrel_add_benchmark(NAME SOURCES file... [LINK library...])
function(navrel_add_benchmark name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK} benchmark::benchmark)
endfunction()

# navrel_add_fuzzer(NAME SOURCES file... [LINK library...])
# A libFuzzer target; its seed corpus is the folder fuzz/corpus/NAME.
function(navrel_add_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
