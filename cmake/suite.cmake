# korvane_suite(<name> <source>...): a GoogleTest program test_<name> over the rooms, the adapters and the virtual world.
function(korvane_suite name)
  add_executable(test_${name} ${ARGN})
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(test_${name} PRIVATE korvane_test_support GTest::gtest GTest::gtest_main)
  target_compile_definitions(test_${name} PRIVATE
    KORVANE_SOURCE_DIR="${CMAKE_SOURCE_DIR}" KORVANE_DIST_DIR="${KORVANE_DIST}")
  add_dependencies(test_${name} korvane_data)
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 600)
endfunction()
