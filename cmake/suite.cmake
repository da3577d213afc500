# korvane_suite(<name> <source>...): a GoogleTest program test_<name> over the rooms, the adapters and the virtual world. CTest runs it as one
# process, so that what its cases share is made once; its results stand in results/<name>.xml of the build folder.
function(korvane_suite name)
  add_executable(test_${name} ${ARGN})
  set_target_properties(test_${name} PROPERTIES UNITY_BUILD ${KORVANE_UNITY} UNITY_BUILD_BATCH_SIZE 5)
  target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(test_${name} PRIVATE korvane_test_support GTest::gtest GTest::gtest_main)
  target_compile_definitions(test_${name} PRIVATE
    KORVANE_SOURCE_DIR="${CMAKE_SOURCE_DIR}" KORVANE_DIST_DIR="${KORVANE_DIST}")
  add_dependencies(test_${name} korvane_data)
  add_test(NAME ${name} COMMAND test_${name} --gtest_brief=1 --gtest_output=xml:${CMAKE_BINARY_DIR}/results/${name}.xml)
  set_tests_properties(${name} PROPERTIES TIMEOUT 1800)
endfunction()
