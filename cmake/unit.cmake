# A unit is one folder under src/: a static library whose headers are included as "<unit>/<header>".
#
# Its include path holds the unit itself and the units that DEPENDS names, nothing else: a header of any other unit
# does not resolve. The path is a folder of links, so that every unit can be granted separately.

function(unit_include_path unit result)
    set(path ${CMAKE_BINARY_DIR}/units/${unit})
    if(NOT EXISTS ${path}/${unit})
        file(MAKE_DIRECTORY ${path})
        file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${unit} ${path}/${unit} SYMBOLIC)
    endif()
    set(${result} ${path} PARENT_SCOPE)
endfunction()

# Grants a target the named units: their headers and their code.
function(use_units target)
    foreach(unit IN LISTS ARGN)
        unit_include_path(${unit} path)
        target_include_directories(${target} PRIVATE ${path})
        target_link_libraries(${target} PUBLIC ${unit})
    endforeach()
endfunction()

# add_unit(<name>
#     [FAST]                 keeps the optimisation of the preset, where other units are squeezed for size
#     [HEADERS ...]          headers that need no operating system
#     [SOURCES ...]          their sources
#     [WINDOWS_HEADERS ...]  headers that include <windows.h> or make sense on Windows only
#     [WINDOWS_SOURCES ...]
#     [POSIX_SOURCES ...]    the other platform's side of a HEADERS contract
#     [DEPENDS ...]          the units whose headers it may include
#     [LIBRARIES ...])       other libraries, among them the system's
#
# Every header is also compiled alone.
function(add_unit name)
    cmake_parse_arguments(UNIT "FAST" "" "HEADERS;SOURCES;WINDOWS_HEADERS;WINDOWS_SOURCES;POSIX_SOURCES;DEPENDS;LIBRARIES"
        ${ARGN})
    set(headers ${UNIT_HEADERS})
    set(sources ${UNIT_SOURCES})
    if(WIN32)
        list(APPEND headers ${UNIT_WINDOWS_HEADERS})
        list(APPEND sources ${UNIT_WINDOWS_SOURCES})
    else()
        list(APPEND sources ${UNIT_POSIX_SOURCES})
    endif()

    foreach(header IN LISTS headers)
        string(MAKE_C_IDENTIFIER ${header} stem)
        set(alone ${CMAKE_CURRENT_BINARY_DIR}/alone/${stem}.cpp)
        file(CONFIGURE OUTPUT ${alone} CONTENT "#include \"${name}/${header}\"\n#include \"${name}/${header}\"\n")
        list(APPEND sources ${alone})
    endforeach()

    add_library(${name} STATIC ${sources})
    unit_include_path(${name} path)
    target_include_directories(${name} PRIVATE ${path})
    use_units(${name} ${UNIT_DEPENDS})
    target_link_libraries(${name} PUBLIC ${UNIT_LIBRARIES} PRIVATE whole_program project_options)
    if(NOT UNIT_FAST)
        target_link_libraries(${name} PRIVATE small_code)
    endif()
endfunction()

# add_unit_test(<unit> SOURCES ... [WINDOWS_SOURCES ...] [DEPENDS ...] [LIBRARIES ...])
#
# One test program for each unit; DEPENDS names further units that its tests include.
function(add_unit_test unit)
    cmake_parse_arguments(TEST "" "" "SOURCES;WINDOWS_SOURCES;DEPENDS;LIBRARIES" ${ARGN})
    set(sources ${TEST_SOURCES})
    if(WIN32)
        list(APPEND sources ${TEST_WINDOWS_SOURCES})
    endif()
    add_executable(${unit}_test ${sources})
    use_units(${unit}_test ${unit} ${TEST_DEPENDS})
    target_link_libraries(${unit}_test PRIVATE gtest_main gmock ${TEST_LIBRARIES} project_options)
    add_test(NAME ${unit} COMMAND ${unit}_test)
    set_tests_properties(${unit} PROPERTIES TIMEOUT 300)
endfunction()
