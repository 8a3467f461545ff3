# A room is a folder of src/: one static library, which may use the rooms below it and nothing else.

# numalink_room(NAME): the library numalink_NAME from src/NAME, over the rooms that src/layers names for it.
function(numalink_room name)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
    add_library(numalink_${name} STATIC ${sources})
    target_include_directories(numalink_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
    numalink_layer(${name} below)
    target_link_libraries(numalink_${name} PUBLIC ${below})
endfunction()

# numalink_layer(NAME RESULT): the libraries of the rooms below NAME.
set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/layers)
function(numalink_layer name result)
    file(STRINGS ${CMAKE_SOURCE_DIR}/src/layers line REGEX "^${name}:")
    string(REGEX REPLACE "^${name}: *" "" below "${line}")
    separate_arguments(below)
    list(TRANSFORM below PREPEND numalink_)
    set(${result} ${below} PARENT_SCOPE)
endfunction()

# numalink_test(NAME library...): tests/NAME/*.cpp as one test program.
function(numalink_test name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${name}/*.cpp)
    if(sources)
        add_executable(test_${name} ${sources})
        target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
        target_link_libraries(test_${name} PRIVATE ${ARGN} numalink_test_support GTest::gtest GTest::gmock)
        target_precompile_headers(test_${name} PRIVATE <gtest/gtest.h>)
        add_dependencies(test_${name} numalink_data)
        add_test(NAME ${name} COMMAND test_${name})
        set_tests_properties(${name} PROPERTIES ENVIRONMENT LC_ALL=C.UTF-8)  # what is expected is English
    endif()
endfunction()
