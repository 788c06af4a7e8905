# What "cmake --install" lays down: headers, both libraries, the tool, and what
# find_package(Tovalin) and pkg-config need to find them wherever they lie.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tovalin)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/tovalin DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS tovalin_shared tovalin_static EXPORT TovalinTargets)
install(EXPORT TovalinTargets NAMESPACE Tovalin:: DESTINATION ${package_dir})
if(TARGET tovalin_tool)
  install(TARGETS tovalin_tool)
  # What "tovalin selftest" runs.
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/tests/conformance
          DESTINATION ${CMAKE_INSTALL_DATADIR}/tovalin)
endif()
if(TARGET tovalin_tool AND NOT WIN32 AND NOT CMAKE_CROSSCOMPILING)
  # The tool knows its commands: it writes its page of the manual, and what bash completes.
  set(pages ${PROJECT_BINARY_DIR}/pages)
  add_custom_command(
    OUTPUT ${pages}/tovalin.1 ${pages}/tovalin
    COMMAND ${CMAKE_COMMAND} -E make_directory ${pages}
    COMMAND tovalin_tool help --man > ${pages}/tovalin.1
    COMMAND tovalin_tool completion bash > ${pages}/tovalin
    DEPENDS tovalin_tool VERBATIM)
  add_custom_target(tovalin_pages ALL DEPENDS ${pages}/tovalin.1 ${pages}/tovalin)
  install(FILES ${pages}/tovalin.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${pages}/tovalin DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()

write_basic_package_version_file(${PROJECT_BINARY_DIR}/TovalinConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/TovalinConfig.cmake
              ${PROJECT_BINARY_DIR}/TovalinConfigVersion.cmake DESTINATION ${package_dir})

file(RELATIVE_PATH pkgconfig_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/tovalin.pc.in ${PROJECT_BINARY_DIR}/tovalin.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tovalin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
