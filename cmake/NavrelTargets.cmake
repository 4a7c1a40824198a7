# How every target of the tree is made: one function a kind, so that warnings, guard macros,
# sanitizers and test registration are the same everywhere.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# A compiler cache where there is one and none was chosen. With precompiled headers it must take a file's times as
# they are.
find_program(NAVREL_CCACHE ccache)
if(NAVREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${NAVREL_CCACHE}")
endif()

add_library(navrel_options INTERFACE)
target_include_directories(navrel_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(navrel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-qual -Wformat=2 -Wundef
    # GCC follows paths through inlined library code that cannot be taken: these warn about the headers of Qt, Boost and
    # the standard library, not about ours.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-maybe-uninitialized;-Wno-restrict;-Wno-stringop-overflow>
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    $<$<BOOL:${NAVREL_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(navrel_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CONTEXTLESS_CONNECT QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_STRICT_ITERATORS)

if(CMAKE_UNITY_BUILD)
    # One file's constant is no other file's business, and a type of its own is no header's.
    target_compile_options(navrel_options INTERFACE -Wno-shadow -Wno-subobject-linkage)
endif()
if(NAVREL_SANITIZE)
    target_compile_options(navrel_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(navrel_options INTERFACE -fsanitize=address,undefined)
    # Clang 14 cannot compile a coroutine under this check: it loses the function's address in the coroutine's parts.
    target_compile_options(navrel_options INTERFACE $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
endif()
# Hardening, the same in every build that people run; scripts/check-hardening reads it from the programs. The
# sanitizers guard the same and more, and fortified functions would hide faults from them.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT NAVREL_SANITIZE)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    # Else CMake leaves it to the compiler how programs are linked.
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    # A system's compiler may define another level by itself.
    target_compile_options(navrel_options INTERFACE
        -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    target_compile_definitions(navrel_options INTERFACE _GLIBCXX_ASSERTIONS)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        target_compile_options(navrel_options INTERFACE -fcf-protection)
    endif()
    # A program may take a copy of a library's variable: then Qt's own half of QCoreApplication would not know the
    # instance that was made here.
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag(-mno-direct-extern-access NAVREL_KNOWS_INDIRECT_ACCESS)
    if(NAVREL_KNOWS_INDIRECT_ACCESS)
        target_compile_options(navrel_options INTERFACE -mno-direct-extern-access)
        target_link_options(navrel_options INTERFACE -mno-direct-extern-access)
    endif()
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        target_link_options(navrel_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
    endif()
endif()
if(NAVREL_BUILD_FUZZERS)
    target_compile_options(navrel_options INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(navrel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What most files include. It is compiled once for all libraries and once for all tests: see navrel_add_library and
# tests/CMakeLists.txt.
set(NAVREL_PRECOMPILED_HEADERS
    <QByteArray> <QByteArrayView> <QDateTime> <QDeadlineTimer> <QFile> <QFileInfo> <QHash> <QObject> <QString>
    <QStringList> <QTimer> <QUrl> <QVariant> <QVariantMap> <algorithm> <array> <chrono> <functional> <limits> <map>
    <memory> <mutex> <optional> <span> <string> <string_view> <thread> <unordered_map> <utility> <variant> <vector>)
if(NAVREL_PRECOMPILE_HEADERS)
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/precompiled.cpp" CONTENT "// Only the headers count.\n")
    add_library(navrel_precompiled STATIC "${PROJECT_BINARY_DIR}/precompiled.cpp")
    target_link_libraries(navrel_precompiled PRIVATE navrel_options Qt6::Core)
    target_precompile_headers(navrel_precompiled PRIVATE ${NAVREL_PRECOMPILED_HEADERS})
endif()

# navrel_add_library(NAME SOURCES file... [LINK library...] [PRECOMPILE header...] [OPTIMIZE_ACROSS_FILES])
# One layer, or one part of a layer, as a static library. PRECOMPILE is for a library most of whose files include
# some large headers that no other library does. OPTIMIZE_ACROSS_FILES is for those that do little at a time but
# often: a frame passes through many small functions of several files.
function(navrel_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMIZE_ACROSS_FILES" "" "SOURCES;LINK;PRECOMPILE")
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC navrel_options ${arg_LINK})
    if(NAVREL_PRECOMPILE_HEADERS AND arg_PRECOMPILE)
        target_precompile_headers(${name} PRIVATE ${NAVREL_PRECOMPILED_HEADERS} ${arg_PRECOMPILE})
    elseif(NAVREL_PRECOMPILE_HEADERS)
        target_precompile_headers(${name} REUSE_FROM navrel_precompiled)
    endif()
    if(arg_OPTIMIZE_ACROSS_FILES AND NAVREL_LINK_TIME_OPTIMIZATION)
        set_target_properties(${name} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
        # Qt's hash, which is no longer read as a system header then, looks as if it might grow
        # without bound.
        target_link_options(${name} INTERFACE
            $<$<CXX_COMPILER_ID:GNU>:-Wno-alloc-size-larger-than>)
        # Programs are linked on all processors, too, and without a warning that they are not.
        target_link_options(${name} INTERFACE $<$<CXX_COMPILER_ID:GNU>:-flto=auto>)
    endif()
endfunction()

# navrel_add_executable(NAME SOURCES file... [LINK library...])
function(navrel_add_executable name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK})
endfunction()

# navrel_add_tests(NAME SOURCES file... [LINK library...] [OWN_NETWORK | WIDGETS]
#                  [WHOLE_PROGRAM])
# One binary a folder, one ctest entry a test case. WHOLE_PROGRAM is for tests that start the real program, which take
# longer: "scripts/test quick" leaves them out. OWN_NETWORK runs every test of the binary in a
# network namespace of its own, so that fixed ports never collide; WIDGETS gives it an application
# with windows, which nobody sees.
function(navrel_add_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_NETWORK;WIDGETS;WHOLE_PROGRAM" "" "SOURCES;LINK")
    set(main navrel_test_main)
    if(arg_OWN_NETWORK)
        set(main navrel_test_main_own_network)
    elseif(arg_WIDGETS)
        set(main navrel_test_main_widgets)
    endif()
    add_executable(${name} ${arg_SOURCES})
    # Few enough that both processors have something to compile until the end.
    set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 6)
    target_link_libraries(${name} PRIVATE navrel_options ${arg_LINK} ${main} GTest::gmock)
    if(NAVREL_PRECOMPILE_HEADERS)
        target_precompile_headers(${name} REUSE_FROM navrel_test_main)
        target_compile_options(${name} PRIVATE -fPIC)
    endif()
    # Both times only end what hangs: a busy machine is slow.
    set(properties TIMEOUT 600)
    if(arg_WHOLE_PROGRAM)
        # They mostly wait: begun first, they do so beside the others instead of behind them.
        list(APPEND properties LABELS whole-program COST 10)
    endif()
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 600
        PROPERTIES ${properties})
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
    add_dependencies(fuzzers ${name})
endfunction()
