# Installs the built tree, then builds and runs the consumer in each way that a
# host has to find the library.
foreach(step install find_package pkg_config add_subdirectory)
  add_test(NAME consumer.${step} COMMAND ${CMAKE_CURRENT_LIST_DIR}/check.sh ${step}
                                         ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
  set_tests_properties(
    consumer.${step} PROPERTIES TIMEOUT 300 ENVIRONMENT
    "CXX=${CMAKE_CXX_COMPILER};CXXFLAGS=${CMAKE_CXX_FLAGS};CMAKE_GENERATOR=${CMAKE_GENERATOR};XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/config")
endforeach()
set_tests_properties(consumer.install PROPERTIES FIXTURES_SETUP installed_copy)
set_tests_properties(consumer.find_package consumer.pkg_config
                     PROPERTIES FIXTURES_REQUIRED installed_copy)
