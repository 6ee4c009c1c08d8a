# SPDX-License-Identifier: Apache-2.0
# Run by ctest as cmake -P: checks that the compiler refuses code for the
# access of a destructor, with the compiler, flags and include directories of
# the build (syntax only, so it also runs in a cross build).
#   COMPILER     the C++ compiler
#   FLAGS        options, separated by |
#   INCLUDES     include directories, separated by |
#   DEFINITIONS  preprocessor definitions, separated by |
#   SOURCE       the file to compile
#   CASES        macro names, separated by |
# SOURCE compiled as it is must succeed, or the check proves nothing (a
# broken include path would make every case fail too). Compiled with each
# case defined it must fail, with a diagnostic about a private or protected
# destructor (as g++ and clang word it).
foreach(required COMPILER SOURCE CASES)
    if(NOT DEFINED ${required})
        message(FATAL_ERROR "ExpectDestructorRefused: ${required} is not set")
    endif()
endforeach()

set(command ${COMPILER} -fsyntax-only)
foreach(kind FLAGS INCLUDES DEFINITIONS)
    string(REPLACE "|" ";" ${kind} "${${kind}}")
endforeach()
list(REMOVE_DUPLICATES INCLUDES)
list(APPEND command ${FLAGS})
foreach(directory IN LISTS INCLUDES)
    list(APPEND command -I${directory})
endforeach()
foreach(definition IN LISTS DEFINITIONS)
    list(APPEND command -D${definition})
endforeach()

execute_process(COMMAND ${command} ${SOURCE} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status EQUAL 0)
    list(JOIN command " " shown)
    message(FATAL_ERROR "The source does not compile even without a case, so the check "
        "would prove nothing:\n${shown} ${SOURCE}\n${output}")
endif()
message(STATUS "without a case: compiles")

set(refusal "(~[A-Za-z_0-9]+\\(\\)('|’) is (private|protected))|((calling a|has) (private|protected) destructor)")
string(REPLACE "|" ";" CASES "${CASES}")
foreach(case IN LISTS CASES)
    execute_process(COMMAND ${command} -D${case} ${SOURCE}
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(status EQUAL 0)
        message(FATAL_ERROR "${case}: compiles, but must be refused")
    endif()
    if(NOT output MATCHES "${refusal}")
        message(FATAL_ERROR "${case}: refused, but not for the access of a destructor:\n${output}")
    endif()
    message(STATUS "${case}: refused (non-public destructor)")
endforeach()
