# Debian packages, one with the commands and one for developers, and an archive of everything: `cpack` in the build
# directory. scripts/package.sh configures a build for it.
set(CPACK_PACKAGE_NAME zeb-profiler)
set(CPACK_PACKAGE_VENDOR "Zeb Profiler developers")
set(ZEB_PACKAGE_CONTACT "Zeb Profiler developers <zeb-profiler@example.org>" CACHE STRING "Maintainer of the packages")
set(CPACK_PACKAGE_CONTACT ${ZEB_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reader of neural network profiling logs")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL commands development)
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMMANDS_PACKAGE_NAME zeb-profiler)
set(CPACK_DEBIAN_COMMANDS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_COMMANDS_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_COMMANDS_DESCRIPTION
"A runtime that executes neural networks on an accelerator leaves a binary
log. zeb-profile-viewer shows where the time of an inference goes,
zeb-profile-compare whether a version is faster, zeb-profile-history when
many versions got slower, zeb-profile-export writes runs as tables for
databases, and write-sample-log writes logs to try.")
# The readers are modules, named without a version, in the directory of libraries.
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_COMMANDS_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME zeb-profiler-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "zeb-profiler (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"Headers for programs that load the readers of profiling logs, and for readers
of one's own, with a CMake package and a pkg-config file.")

set(CPACK_ZEB_VERSION_DATE ${ZEB_VERSION_DATE})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianFiles.cmake)
include(CPack)
