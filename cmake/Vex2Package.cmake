# Installs a CMake package and pkg-config files, with which other builds find the libraries. Both
# locate files relative to themselves, so that an installed tree can be moved.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vex2)
install(EXPORT vex2Targets NAMESPACE vex2:: DESTINATION ${package_dir})
configure_package_config_file(cmake/vex2Config.cmake.in vex2Config.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vex2ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vex2Config.cmake ${PROJECT_BINARY_DIR}/vex2ConfigVersion.cmake
        DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH vex2_pc_to_prefix "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" vex2_pc_to_prefix "${vex2_pc_to_prefix}")
foreach(name vex2 vex2framework vex2lab)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir})
endforeach()

# Documents and examples for host authors, in the same folders as here, so that links work.
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/format.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS
        PATTERN CMakeLists.txt EXCLUDE)
