# SPDX-License-Identifier: Apache-2.0
# One suite per platform area, kivplr_<area>_tests, mirroring platform/<area>/.
# Tests of private helpers (AccountTool, PamConversation, UserGroupList,
# ScopedLock) include them from the private include root like the library does.
# The library does not export them, so those suites link their code from
# kivplr_internal (platform/CMakeLists.txt says why that is sound).

kiv_add_test_suite(kivplr_core_tests platform/core
    LIBRARIES kivplr_internal
    SOURCES
        InterfaceIdentifiersTest.cpp
        LinuxPlatformTest.cpp
        LinuxResultConverterTest.cpp
        ObjectTest.cpp
        PathTest.cpp
        PlatformTest.cpp
        PosixResultPassFailTest.cpp
        ReferenceCounterTest.cpp
        ResultTest.cpp
        SmartPtrTest.cpp
        StringAlgorithmsTest.cpp
        UuidGeneratorTest.cpp
        UuidTest.cpp)

# Only the last Release destroys a platform object: a delete on one, or one on
# the stack, must not compile. The check compiles a source with the compiler,
# options and include directories of the publisher's library (which sees both
# libraries' headers), syntax only, so it runs in every lane.
add_test(NAME ObjectTest.DeleteOnAPlatformObjectDoesNotCompile
    COMMAND ${CMAKE_COMMAND}
        -DCOMPILER=${CMAKE_CXX_COMPILER}
        "-DFLAGS=${CMAKE_CXX17_STANDARD_COMPILE_OPTION}|$<JOIN:$<TARGET_PROPERTY:kivdiscovery,COMPILE_OPTIONS>,|>"
        "-DINCLUDES=$<JOIN:$<TARGET_PROPERTY:kivdiscovery,INCLUDE_DIRECTORIES>,|>"
        "-DDEFINITIONS=$<JOIN:$<TARGET_PROPERTY:kivdiscovery,COMPILE_DEFINITIONS>,|>"
        -DSOURCE=${CMAKE_CURRENT_SOURCE_DIR}/platform/core/compile-failure/DeletePlatformObject.cpp
        "-DCASES=KIV_CASE_DELETE_IMPLEMENTATION|KIV_CASE_DELETE_OBJECT|KIV_CASE_DELETE_DERIVABLE|KIV_CASE_DELETE_PUBLISHER|KIV_CASE_DELETE_INTERFACE|KIV_CASE_DELETE_ROOT_INTERFACE|KIV_CASE_OBJECT_ON_STACK"
        -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ExpectDestructorRefused.cmake)
set_tests_properties(ObjectTest.DeleteOnAPlatformObjectDoesNotCompile PROPERTIES LABELS platform/core)

kiv_add_test_suite(kivplr_io_tests platform/io
    SOURCES
        DirectoryManagerTest.cpp
        FileManagerTest.cpp
        LinuxDirectoryPositionTest.cpp
        LinuxFileStreamTest.cpp
        LogManagerTest.cpp
        LogTest.cpp
        StreamReaderTest.cpp)

kiv_add_test_suite(kivplr_time_tests platform/time
    SOURCES
        ClockBaseTest.cpp
        ClockGetTimeClockTest.cpp
        DateDurationTest.cpp
        DateTest.cpp
        EpochTest.cpp
        Iso8601DurationTest.cpp
        LinuxSystemClockTest.cpp
        PosixCurrentTimespecTest.cpp
        PosixTimespecOffsetCalculatorTest.cpp
        TimeDurationTest.cpp
        TimePointTest.cpp)

kiv_add_test_suite(kivplr_accounts_tests platform/accounts
    LIBRARIES kivplr_internal
    SOURCES
        AccountToolTest.cpp
        PamConversationTest.cpp
        PosixTest.cpp
        UserGroupListTest.cpp
        UserGroupTest.cpp
        UserTest.cpp)
# Which account libraries a program maps is checked by a program of its own,
# linked like the daemon: libkivplr, no account library.
kiv_add_test_suite(kivplr_account_libraries_tests platform/accounts
    SOURCES
        AccountLibrariesTest.cpp)
# A sanitizer's interceptors of crypt and crypt_r find the real functions
# when the program starts; libkivplr loads libcrypt only later, and pam_unix
# (which needs it) would then call through a null pointer. Under a sanitizer
# the accounts suite therefore needs libcrypt from the start.
if(KIV_SANITIZE)
    find_library(KIV_TEST_CRYPT_LIBRARY NAMES libcrypt.so.1 crypt REQUIRED)
    target_link_libraries(kivplr_accounts_tests PRIVATE
        -Wl,--push-state,--no-as-needed ${KIV_TEST_CRYPT_LIBRARY} -Wl,--pop-state)
endif()

kiv_add_test_suite(kivplr_sync_tests platform/sync
    LIBRARIES kivplr_internal
    SOURCES
        LockBaseTest.cpp
        ManualResetEventTest.cpp
        PassiveThreadObserverTest.cpp
        PosixLockTest.cpp
        PosixSemaphoreTest.cpp
        PosixSharedLockTest.cpp
        PosixThreadPriorityMapTest.cpp
        PosixThreadTest.cpp
        ScopedLockTest.cpp
        SemaphoreBaseTest.cpp
        SharedLockBaseTest.cpp
        ThreadBaseTest.cpp
        WaitEventTest.cpp)

# The library exports the names its public headers declare and nothing else
# (no private helper, no internal type in a public signature).
add_test(NAME KivPlrSymbolsTest.OnlyNamesOfPublicHeadersAreExported
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/platform/exported-symbols
        ${CMAKE_NM} $<TARGET_FILE:kivplr> ${KIV_PUBLIC_INCLUDE_DIR}/KivPlr)
set_tests_properties(KivPlrSymbolsTest.OnlyNamesOfPublicHeadersAreExported PROPERTIES LABELS platform)
