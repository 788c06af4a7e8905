# A host in C, and the example in C# where mono is there.
enable_language(C)

set(c_environment
    "XDG_CONFIG_HOME=${PROJECT_BINARY_DIR}/config;XDG_RUNTIME_DIR=${PROJECT_BINARY_DIR}/run")
add_executable(c_border_test ${CMAKE_CURRENT_LIST_DIR}/border_test.c)
add_executable(example_c ${PROJECT_SOURCE_DIR}/examples/c/tarifa.c)
foreach(program c_border_test example_c)
  set_target_properties(${program} PROPERTIES C_STANDARD 99 C_STANDARD_REQUIRED ON
                                              C_EXTENSIONS OFF)
  target_compile_options(${program} PRIVATE -pedantic -Werror)
  target_link_libraries(${program} PRIVATE tovalin_shared)
endforeach()
add_test(NAME c.border COMMAND c_border_test)
add_test(NAME examples.c COMMAND example_c)
set_tests_properties(examples.c PROPERTIES PASS_REGULAR_EXPRESSION "^125000\n$")

find_program(MCS mcs)
find_program(MONO mono)
# mono loads libraries of its own kind alone.
if(MCS AND MONO AND NOT TOVALIN_SANITIZE AND NOT CMAKE_CROSSCOMPILING)
  add_test(NAME examples.csharp
           COMMAND ${PROJECT_SOURCE_DIR}/tests/hosts/c/csharp.sh ${MCS} ${MONO}
                   ${PROJECT_SOURCE_DIR}/examples/csharp $<TARGET_FILE:tovalin_shared>
                   ${PROJECT_BINARY_DIR}/csharp)
  set_tests_properties(examples.csharp PROPERTIES PASS_REGULAR_EXPRESSION "125000")
  set(csharp_tests examples.csharp)
endif()
set_tests_properties(c.border examples.c ${csharp_tests}
                     PROPERTIES TIMEOUT 120 ENVIRONMENT "${c_environment}")
