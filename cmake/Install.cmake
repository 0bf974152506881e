# What lets others find the installation: a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZebProfiling)
configure_package_config_file(cmake/ZebProfilingConfig.cmake.in ${PROJECT_BINARY_DIR}/ZebProfilingConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZebProfilingConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZebProfilingConfig.cmake ${PROJECT_BINARY_DIR}/ZebProfilingConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The prefix as seen from the file, so that an installation can be moved.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix ${pc_prefix})
configure_file(cmake/zeb-profiling.pc.in ${PROJECT_BINARY_DIR}/zeb-profiling.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zeb-profiling.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
install(FILES README.md LICENSE CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zeb-profiler COMPONENT commands)
