# KvImport.cmake - what every target of the project has in common, said once.
#
#   kv_add_library(<Name> [ALIAS <Alias>] [SOURCES file...] [PUBLIC target...] [PRIVATE target...])
#   kv_add_program(<name> MAIN file [SOURCES file...] [LINK target...])
#   kv_add_test(<Unit> [SOURCES file...] [LINK target...] [DEPENDS target...] [DEFINE NAME=value...])
#   kv_add_fuzzer(<Unit> [LINK target...])
#   kv_add_bench(<Unit> [LINK target...])
#   kv_leave_out(<Name> <what is missing>)   kv_leave_out_program(<name> [<what is missing>])

include_guard(GLOBAL)
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

# The cache must look through precompiled headers, which by default it refuses to do, and know an object
# again in another build folder: sources have their whole path, so that debuggers find them all the same.
find_program(KV_CCACHE ccache)
mark_as_advanced(KV_CCACHE)
if(KV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env "CCACHE_NOHASHDIR=1"
        "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime" "${KV_CCACHE}")
endif()

# --- What the machine offers ------------------------------------------------------------------------

enable_testing()

set(KV_WITH_TESTS OFF)
if(KVIMPORT_TESTS STREQUAL "AUTO")
    find_package(GTest QUIET)
    set(KV_WITH_TESTS ${GTest_FOUND})
elseif(KVIMPORT_TESTS)
    find_package(GTest REQUIRED)
    set(KV_WITH_TESTS ON)
endif()
if(KV_WITH_TESTS)
    include(GoogleTest)
endif()

set(KV_WITH_BENCHMARKS OFF)
if(KVIMPORT_BENCHMARKS STREQUAL "AUTO")
    find_package(benchmark QUIET)
    set(KV_WITH_BENCHMARKS ${benchmark_FOUND})
elseif(KVIMPORT_BENCHMARKS)
    find_package(benchmark REQUIRED)
    set(KV_WITH_BENCHMARKS ON)
endif()

# --- Options of every target ------------------------------------------------------------------------

# Each option is set on the targets themselves, not on a directory, so that nothing leaks into a
# project that adds this one as a subdirectory. Such a project gets one thing: the language of the headers.
function(kv_configure_target Target)
    target_compile_features(${Target} PUBLIC cxx_std_20)
    target_compile_options(${Target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
        # clang counts sign conversions among -Wconversion and g++ does not: here both do not, since
        # indexing a container with an int would ask for a cast on every other line.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
        # g++ 12 sees overlapping copies in plain std::string concatenation when it optimises (PR 105651).
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    if(KVIMPORT_SANITIZE)
        # The checks that sanitizers put in hide from g++ that a std::optional was filled.
        target_compile_options(${Target} PRIVATE
            -fsanitize=${KVIMPORT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
            $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
        target_link_options(${Target} PRIVATE -fsanitize=${KVIMPORT_SANITIZE})
    endif()
    if(KVIMPORT_LIBFUZZER)
        target_compile_options(${Target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(KVIMPORT_COVERAGE)
        target_compile_options(${Target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${Target} PRIVATE --coverage)
    endif()
    # Checks the preconditions of the standard library wherever assert() is alive.
    target_compile_definitions(${Target} PRIVATE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endfunction()

# --- Libraries that were left out -------------------------------------------------------------------

# An adapter whose third-party library is not installed says so here instead of defining its target.
# What links it is then left out too, while a misspelt target name still stops the configuration.
function(kv_leave_out Name Missing)
    set_property(GLOBAL APPEND PROPERTY KV_LEFT_OUT "KvImport::${Name}")
    message(STATUS "Leaving out KvImport::${Name}: ${Missing} not found")
endfunction()

# The same for a program and for the library that holds its parts. Nothing is said of a program that
# nobody asked for.
function(kv_leave_out_program Name)
    set_property(GLOBAL APPEND PROPERTY KV_LEFT_OUT ${Name} "KvImport::${Name}Parts")
    if(ARGC GREATER 1)
        message(STATUS "Leaving out ${Name}: ${ARGV1} not found")
    endif()
endfunction()

# Sets `Result` to the targets of the list that were left out.
function(kv_find_left_out Result)
    get_property(LeftOut GLOBAL PROPERTY KV_LEFT_OUT)
    set(Found)
    foreach(Target IN LISTS ARGN)
        if(Target IN_LIST LeftOut)
            list(APPEND Found ${Target})
        endif()
    endforeach()
    set(${Result} ${Found} PARENT_SCOPE)
endfunction()

# --- Libraries and programs -------------------------------------------------------------------------

# The static library of the current folder, KvImport::<Alias>. Whoever links it sees the headers of
# this folder and of its PUBLIC targets by their bare names, and no others. A folder that has only
# headers becomes an interface library. In a project that adds this one it is built when something links it.
function(kv_add_library Name)
    cmake_parse_arguments(PARSE_ARGV 1 Arg "" "ALIAS" "SOURCES;PUBLIC;PRIVATE")
    if(NOT Arg_ALIAS)
        set(Arg_ALIAS ${Name})
    endif()
    set(Target "KvImport${Arg_ALIAS}")
    if(Arg_SOURCES)
        add_library(${Target} STATIC ${Arg_SOURCES})
        target_include_directories(${Target} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
        target_link_libraries(${Target} PUBLIC ${Arg_PUBLIC} PRIVATE ${Arg_PRIVATE})
        kv_configure_target(${Target})
    else()
        add_library(${Target} INTERFACE)
        target_compile_features(${Target} INTERFACE cxx_std_20)
        target_include_directories(${Target} INTERFACE "${CMAKE_CURRENT_SOURCE_DIR}")
        target_link_libraries(${Target} INTERFACE ${Arg_PUBLIC})
    endif()
    if(NOT PROJECT_IS_TOP_LEVEL)
        set_target_properties(${Target} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
    add_library(KvImport::${Arg_ALIAS} ALIAS ${Target})
endfunction()

# A program of the current folder. All but its main file goes into KvImport::<name>Parts, which tests
# can link. Where programs are not asked for it can still be built by its name.
function(kv_add_program Name)
    cmake_parse_arguments(PARSE_ARGV 1 Arg "" "MAIN" "SOURCES;LINK")
    kv_find_left_out(LeftOut ${Arg_LINK})
    if(LeftOut)
        kv_leave_out_program(${Name} "${LeftOut}")
        return()
    endif()
    kv_add_library(${Name}Parts SOURCES ${Arg_SOURCES} PUBLIC ${Arg_LINK})
    add_executable(${Name} ${Arg_MAIN})
    target_link_libraries(${Name} PRIVATE KvImport::${Name}Parts)
    kv_configure_target(${Name})
    if(KVIMPORT_PROGRAMS)
        install(TARGETS ${Name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    else()
        set_target_properties(${Name} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endfunction()

# --- Tests ------------------------------------------------------------------------------------------

# Adds <Unit>_test.cpp to the test program of the current folder, one program a folder because linking
# costs more than compiling here. CTest runs each TEST in a process of its own, several at a time.
function(kv_add_test Unit)
    cmake_parse_arguments(PARSE_ARGV 1 Arg "" "" "SOURCES;LINK;DEPENDS;DEFINE")
    kv_find_left_out(LeftOut ${Arg_LINK} ${Arg_DEPENDS})
    if(LeftOut)
        message(STATUS "Leaving out ${Unit}_test: it needs ${LeftOut}")
        return()
    endif()
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/tests"
               OUTPUT_VARIABLE Folder)
    string(REPLACE "/" "_" Target "${Folder}_test")
    if(NOT TARGET ${Target})
        add_executable(${Target})
        target_link_libraries(${Target} PRIVATE GTest::gmock GTest::gtest_main)
        target_precompile_headers(${Target} REUSE_FROM KvTestHeaders)
        kv_configure_target(${Target})
        gtest_discover_tests(${Target}
            DISCOVERY_MODE PRE_TEST
            PROPERTIES LABELS "${Folder}" TIMEOUT 300)
    endif()
    target_sources(${Target} PRIVATE ${Arg_SOURCES} ${Unit}_test.cpp)
    target_link_libraries(${Target} PRIVATE ${Arg_LINK})
    target_compile_definitions(${Target} PRIVATE ${Arg_DEFINE})
    if(Arg_DEPENDS)
        add_dependencies(${Target} ${Arg_DEPENDS})
    endif()
endfunction()

# --- Fuzz targets -----------------------------------------------------------------------------------

set(KVIMPORT_FUZZ_SECONDS 5 CACHE STRING
    "How long the test run lets libFuzzer search, for each fuzz target; 0 only replays the seeds")

# Builds <Unit>_fuzz.cpp, which defines LLVMFuzzerTestOneInput. Beside it may lie a dictionary,
# <Unit>_fuzz.dict, and seeds in seeds/<Unit>/. Without libFuzzer the target replays the seeds and
# damaged copies of them, so that every ordinary test run keeps old finds fixed.
function(kv_add_fuzzer Unit)
    cmake_parse_arguments(PARSE_ARGV 1 Arg "" "" "LINK")
    kv_find_left_out(LeftOut ${Arg_LINK})
    if(LeftOut)
        message(STATUS "Leaving out ${Unit}_fuzz: it needs ${LeftOut}")
        return()
    endif()
    set(Target "${Unit}_fuzz")
    add_executable(${Target} ${Unit}_fuzz.cpp)
    if(NOT TARGET fuzzers)
        add_custom_target(fuzzers)                  # all of them, without the programs
    endif()
    add_dependencies(fuzzers ${Target})
    target_link_libraries(${Target} PRIVATE ${Arg_LINK})
    kv_configure_target(${Target})

    set(Seeds "${CMAKE_CURRENT_SOURCE_DIR}/seeds/${Unit}")
    if(NOT EXISTS "${Seeds}")
        set(Seeds)
    endif()
    if(KVIMPORT_LIBFUZZER)
        target_link_options(${Target} PRIVATE -fsanitize=fuzzer)
        set(Found "${CMAKE_CURRENT_BINARY_DIR}/${Unit}")
        file(MAKE_DIRECTORY "${Found}")
        set(Dictionary "${CMAKE_CURRENT_SOURCE_DIR}/${Unit}_fuzz.dict")
        if(EXISTS "${Dictionary}")
            set(Dictionary "-dict=${Dictionary}")
        else()
            set(Dictionary)
        endif()
        set(Limit "-max_total_time=${KVIMPORT_FUZZ_SECONDS}")
        if(KVIMPORT_FUZZ_SECONDS EQUAL 0)           # which libFuzzer takes for no limit at all
            set(Limit "-runs=0")
        endif()
        add_test(NAME ${Target}
            COMMAND ${Target} ${Limit} -timeout=10 -rss_limit_mb=2048
                    -print_final_stats=1 "-artifact_prefix=${Found}/" ${Dictionary} "${Found}" ${Seeds})
    else()
        target_sources(${Target} PRIVATE KvSeedReplay.cpp)
        add_test(NAME ${Target} COMMAND ${Target} ${Seeds})
    endif()
    math(EXPR Timeout "${KVIMPORT_FUZZ_SECONDS} + 300")
    set_tests_properties(${Target} PROPERTIES LABELS fuzz TIMEOUT ${Timeout})
endfunction()

# --- Benchmarks -------------------------------------------------------------------------------------

# Builds <Unit>_bench.cpp into a program of its own.
function(kv_add_bench Unit)
    cmake_parse_arguments(PARSE_ARGV 1 Arg "" "" "LINK")
    kv_find_left_out(LeftOut ${Arg_LINK})
    if(LeftOut)
        message(STATUS "Leaving out ${Unit}_bench: it needs ${LeftOut}")
        return()
    endif()
    add_executable(${Unit}_bench ${Unit}_bench.cpp)
    target_link_libraries(${Unit}_bench PRIVATE benchmark::benchmark_main ${Arg_LINK})
    kv_configure_target(${Unit}_bench)
endfunction()
