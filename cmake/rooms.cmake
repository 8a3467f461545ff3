# A room is a folder of src/: one static library, which may use the rooms below it and nothing else.

# numalink_room(NAME [room...]): the library numalink_NAME from src/NAME/*.cpp, over the rooms named.
function(numalink_room name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
    add_library(numalink_${name} STATIC ${sources})
    target_include_directories(numalink_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
    list(TRANSFORM ARGN PREPEND numalink_ OUTPUT_VARIABLE below)
    target_link_libraries(numalink_${name} PUBLIC ${below})
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
    endif()
endfunction()
