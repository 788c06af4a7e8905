# The tool, run as a user runs it.
file(GLOB case_files CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/cases/*.cases)
foreach(case_file ${case_files})
  cmake_path(GET case_file STEM name)
  add_test(NAME tool.${name} COMMAND ${CMAKE_CURRENT_LIST_DIR}/run_cases.sh
                                     $<TARGET_FILE:tovalin_tool> ${case_file} ${PROJECT_SOURCE_DIR})
  list(APPEND tool_tests tool.${name})
endforeach()
add_test(NAME tool.archivos_page COMMAND ${CMAKE_CURRENT_LIST_DIR}/page_cases.sh
                                         $<TARGET_FILE:tovalin_tool>
                                         ${PROJECT_SOURCE_DIR}/docs/archivos.md ${PROJECT_SOURCE_DIR})
add_test(NAME tool.flat_kill COMMAND ${CMAKE_CURRENT_LIST_DIR}/flat_kill.sh
                                     $<TARGET_FILE:tovalin_tool>)
list(APPEND tool_tests tool.archivos_page tool.flat_kill)
add_test(NAME tool.follow_trace COMMAND ${CMAKE_CURRENT_LIST_DIR}/follow_trace.sh
                                        $<TARGET_FILE:tovalin_tool>)
list(APPEND tool_tests tool.follow_trace)
add_test(NAME tool.conformance COMMAND $<TARGET_FILE:tovalin_tool> selftest
                                    ${PROJECT_SOURCE_DIR}/tests/conformance)
list(APPEND tool_tests tool.conformance)
# The sanitizers keep freed memory, so their figures say nothing.
if(NOT TOVALIN_SANITIZE)
  add_test(NAME tool.table_memory COMMAND ${CMAKE_CURRENT_LIST_DIR}/table_memory.sh
                                          $<TARGET_FILE:tovalin_tool>)
  list(APPEND tool_tests tool.table_memory)
endif()
set_tests_properties(
  ${tool_tests}
  PROPERTIES TIMEOUT 120 ENVIRONMENT
             "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/config;XDG_RUNTIME_DIR=${PROJECT_BINARY_DIR}/run")
# Each of some thousand formulas is computed in six ways: minutes, under sanitizers
# on a busy machine.
set_tests_properties(tool.conformance PROPERTIES TIMEOUT 600)
