# Tests of the programs in tools/. Each program's tests have a folder of their
# own, so that every program gets its own test executable.

kiv_add_test_suite(statuscollector_tests tools/statuscollector LIBRARIES kiv_statuscollector status)
if(TARGET statuscollector_tests)
    add_dependencies(statuscollector_tests statuscollector)
    target_compile_definitions(statuscollector_tests PRIVATE
        KIV_STATUSCOLLECTOR_PROGRAM="$<TARGET_FILE:statuscollector>")
endif()
