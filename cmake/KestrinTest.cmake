# Test programs.
#
#     kestrin_add_test(dirty_test SOURCES dirty_test.cpp LIBRARIES kestrin)
#
# builds the GoogleTest program dirty_test, linked to the libraries and to GoogleMock's main, and
# gives CTest one test for each of its test cases, named dirty_test.Suite.Case. Every case runs in a
# process of its own and may take a minute. The cases are asked for when CTest runs, not while the
# program is built. LABEL os gives them a label to choose them by.
#
# KESTRIN_TEST_ENVIRONMENT is what every test has in its environment; tests that are added without
# this function (programs run as they are) set their property ENVIRONMENT to it.
#
# KESTRIN_EMULATOR stands before the path of a program in a command line that a test runs: another
# processor's programs need an emulator, and the shell does not know it. What is emulated may take
# five minutes.
include_guard()

find_package(GTest REQUIRED)
include(GoogleTest)

set(KESTRIN_TEST_ENVIRONMENT
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0)

set(KESTRIN_EMULATOR ${CMAKE_CROSSCOMPILING_EMULATOR} "")
list(JOIN KESTRIN_EMULATOR " " KESTRIN_EMULATOR)
if(KESTRIN_EMULATOR)
    set(KESTRIN_TEST_TIMEOUT 300)
else()
    set(KESTRIN_TEST_TIMEOUT 60)
endif()
# Counting lines takes time.
if(KESTRIN_COVERAGE)
    set(KESTRIN_TEST_TIMEOUT 600)
endif()

function(kestrin_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 TEST "" "LABEL" "SOURCES;LIBRARIES")
    if(NOT TEST_SOURCES OR TEST_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kestrin_add_test(${name} SOURCES ... [LIBRARIES ...] [LABEL ...])")
    endif()

    set(label)
    if(TEST_LABEL)
        set(label LABELS ${TEST_LABEL})
    endif()

    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} GTest::gmock_main)
    gtest_discover_tests(${name}
        TEST_PREFIX ${name}.
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT ${KESTRIN_TEST_TIMEOUT}
        PROPERTIES TIMEOUT ${KESTRIN_TEST_TIMEOUT} ENVIRONMENT "${KESTRIN_TEST_ENVIRONMENT}"
            ${label})
endfunction()
