# The tool, run as a user runs it; one for Windows behind a script of its name.
set(tool $<TARGET_FILE:tovalin_tool>)
if(WIN32)
  set(tool ${PROJECT_BINARY_DIR}/tovalin)
  file(GENERATE OUTPUT ${tool} CONTENT
       "#!/bin/sh\nexec ${CMAKE_CROSSCOMPILING_EMULATOR} '$<TARGET_FILE:tovalin_tool>' \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endif()
foreach(name ${tool_cases})
  add_test(NAME tool.${name}
           COMMAND ${CMAKE_CURRENT_LIST_DIR}/run_cases.sh ${tool}
                   ${CMAKE_CURRENT_LIST_DIR}/cases/${name}.cases ${PROJECT_SOURCE_DIR}
                   ${cases_left_out})
  list(APPEND tool_tests tool.${name})
endforeach()
if(NOT WIN32)  # signals, and a page that shows another system's paths
  add_test(NAME tool.archivos_page
           COMMAND ${CMAKE_CURRENT_LIST_DIR}/page_cases.sh ${tool}
                   ${PROJECT_SOURCE_DIR}/docs/archivos.md ${PROJECT_SOURCE_DIR})
  add_test(NAME tool.flat_kill COMMAND ${CMAKE_CURRENT_LIST_DIR}/flat_kill.sh ${tool})
  list(APPEND tool_tests tool.archivos_page tool.flat_kill)
endif()
add_test(NAME tool.functions_page
         COMMAND ${CMAKE_CURRENT_LIST_DIR}/functions_page.sh ${tool}
                 ${PROJECT_SOURCE_DIR}/docs/functions.md)
add_test(NAME tool.readme_translation
         COMMAND ${CMAKE_CURRENT_LIST_DIR}/translated_page.sh ${PROJECT_SOURCE_DIR}/README.md
                 ${PROJECT_SOURCE_DIR}/LEEME.md)
list(APPEND tool_tests tool.functions_page tool.readme_translation)
add_test(NAME tool.conformance COMMAND tovalin_tool selftest ${PROJECT_SOURCE_DIR}/tests/conformance)
list(APPEND tool_tests tool.conformance)
if(NOT WIN32)  # signals
  add_test(NAME tool.follow_trace COMMAND ${CMAKE_CURRENT_LIST_DIR}/follow_trace.sh
                                          $<TARGET_FILE:tovalin_tool>)
  list(APPEND tool_tests tool.follow_trace)
endif()
# Need /proc and valgrind. The figures of the sanitizers say nothing: they keep freed
# memory, and add instructions of their own.
if(NOT WIN32 AND NOT TOVALIN_SANITIZE)
  add_test(NAME tool.table_memory COMMAND ${CMAKE_CURRENT_LIST_DIR}/table_memory.sh
                                          $<TARGET_FILE:tovalin_tool>)
  add_test(NAME tool.instruction_growth
           COMMAND ${CMAKE_CURRENT_LIST_DIR}/instruction_growth.sh $<TARGET_FILE:tovalin_tool>)
  list(APPEND tool_tests tool.table_memory tool.instruction_growth)
endif()
set_tests_properties(
  ${tool_tests}
  PROPERTIES TIMEOUT 300 ENVIRONMENT
             "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/config;XDG_RUNTIME_DIR=${PROJECT_BINARY_DIR}/run")
# Each of some thousand formulas is computed in six ways: minutes, under sanitizers
# on a busy machine. So is what valgrind counts.
set_tests_properties(tool.conformance PROPERTIES TIMEOUT 900)
if(TEST tool.instruction_growth)
  set_tests_properties(tool.instruction_growth PROPERTIES TIMEOUT 900)
endif()
if(WIN32)
  # It looks at the last evaluation of the user, who is the same for all tests.
  set_tests_properties(tool.vocabulary PROPERTIES RUN_SERIAL ON)
endif()
