# GoogleTest executables. Natively every test case is a test of its own; a cross build registers
# one test an executable, because each start under Wine costs more than most of the cases.

if(CMAKE_CROSSCOMPILING)
    # Debian ships the sources for exactly this: building them with the compiler in use.
    set(VIREON_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH "GoogleTest sources")
    if(NOT EXISTS "${VIREON_GOOGLETEST_DIR}/CMakeLists.txt")
        message(FATAL_ERROR "GoogleTest sources not found in ${VIREON_GOOGLETEST_DIR}: "
                            "install the package googletest or set VIREON_GOOGLETEST_DIR")
    endif()
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory("${VIREON_GOOGLETEST_DIR}" googletest EXCLUDE_FROM_ALL SYSTEM)
else()
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()

# vireon_add_test(<target> SOURCES <files> [LIBS <targets>] [ENV <NAME=value>...] [LABELS <labels>]
#                 [DEPENDS <targets>] [TIMEOUT <seconds>] [PREFIX <text>] [WHOLE])
# PREFIX goes before the names of the test cases where each is a test of its own. WHOLE makes one
# test of the executable on all systems: for many quick cases behind a start that loads a lot.
function(vireon_add_test target)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "WHOLE" "TIMEOUT;PREFIX" "SOURCES;LIBS;ENV;LABELS;DEPENDS")
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    add_executable(${target} ${ARG_SOURCES})
    # What is tested runs with all sanitizers; the tests' own lines compile twice as fast without
    # the checks for undefined behaviour.
    if(VIREON_SANITIZE MATCHES "undefined")
        target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
    endif()
    target_link_libraries(${target} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main
                          vireon_warnings vireon_exact_math)
    target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/src")
    if(ARG_DEPENDS)
        add_dependencies(${target} ${ARG_DEPENDS})
    endif()
    if(CMAKE_CROSSCOMPILING OR ARG_WHOLE)
        add_test(NAME ${target} COMMAND ${target} --gtest_brief=1)
        set_tests_properties(${target} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
                             ENVIRONMENT "${ARG_ENV}" LABELS "${ARG_LABELS}")
    else()
        # A list of variables would come apart inside the discovery; a launcher carries it whole.
        if(ARG_ENV)
            set_target_properties(${target} PROPERTIES
                CROSSCOMPILING_EMULATOR "${CMAKE_COMMAND};-E;env;${ARG_ENV}")
        endif()
        gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST
                             DISCOVERY_TIMEOUT 60 TEST_PREFIX "${ARG_PREFIX}"
                             PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
    endif()
endfunction()

# vireon_repeat_test(<target> <suffix> [ENV <NAME=value>...] [LABELS <labels>] [TIMEOUT <seconds>])
# Runs all of a test program once more, as one test, with variables of its own.
function(vireon_repeat_test target suffix)
    cmake_parse_arguments(PARSE_ARGV 2 ARG "" "TIMEOUT" "ENV;LABELS")
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    set(name ${target}.${suffix})
    # By its file: the name of a target stands for the launcher with the target's own variables.
    if(CMAKE_CROSSCOMPILING)
        set(launcher ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()
    add_test(NAME ${name} COMMAND ${launcher} "$<TARGET_FILE:${target}>" --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
                         ENVIRONMENT "${ARG_ENV}" LABELS "${ARG_LABELS}")
endfunction()
