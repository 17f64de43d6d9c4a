# SPDX-License-Identifier: Apache-2.0
# What "cmake --install" lays out, in three components that CPack makes into three Debian
# packages (scripts/package):
#   library      libgantrixa0j1     the shared library and the workbook templates
#   development  libgantrixa0j-dev  the header, the .so link, pkg-config and CMake files
#   program      rkparam            the host program, its man page, desktop entry and icon
# Paths follow GNUInstallDirs, so a configure with CMAKE_INSTALL_PREFIX=/usr puts the library
# in Debian's multiarch directory.
include(CMakePackageConfigHelpers)

set(GANTRIX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/GantrixA0J)
set(GANTRIX_LIBRARY_PACKAGE libgantrixa0j${PROJECT_VERSION_MAJOR})

install(TARGETS GantrixA0J EXPORT GantrixA0JTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
                NAMELINK_COMPONENT development
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${GANTRIX_TEMPLATES} DESTINATION ${GANTRIX_TEMPLATE_DIR} COMPONENT library)
install(TARGETS rkparam RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)

# find_package(GantrixA0J): the imported target GantrixA0J::GantrixA0J.
install(EXPORT GantrixA0JTargets NAMESPACE GantrixA0J:: DESTINATION ${GANTRIX_CMAKE_DIR}
        COMPONENT development)
configure_package_config_file(cmake/GantrixA0JConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfig.cmake
                              INSTALL_DESTINATION ${GANTRIX_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfigVersion.cmake
        DESTINATION ${GANTRIX_CMAKE_DIR} COMPONENT development)

# pkg-config --cflags --libs gantrixa0j. The prefix is found from the file's own place, so the
# file is right in whatever prefix "cmake --install --prefix" puts it.
file(RELATIVE_PATH GANTRIX_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" GANTRIX_PC_TO_PREFIX "${GANTRIX_PC_TO_PREFIX}")
configure_file(cmake/gantrixa0j.pc.in gantrixa0j.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/gantrixa0j.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The man page (compressed, as Debian keeps them), the desktop entry and its icon.
find_program(GANTRIX_GZIP gzip REQUIRED)
add_custom_command(OUTPUT rkparam.1.gz changelog.gz
                   COMMAND ${GANTRIX_GZIP} -9 -n -c ${CMAKE_CURRENT_SOURCE_DIR}/packaging/rkparam.1
                           > rkparam.1.gz
                   COMMAND ${GANTRIX_GZIP} -9 -n -c ${CMAKE_CURRENT_SOURCE_DIR}/packaging/changelog
                           > changelog.gz
                   DEPENDS packaging/rkparam.1 packaging/changelog VERBATIM)
add_custom_target(gantrix_docs ALL DEPENDS rkparam.1.gz changelog.gz)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/rkparam.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        COMPONENT program)
install(FILES packaging/rkparam.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
        COMPONENT program)
install(FILES packaging/gantrixa0j.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT program)

# Each package carries the copyright and the changelog in its own documentation directory.
foreach(component_package IN ITEMS "library;${GANTRIX_LIBRARY_PACKAGE}"
                                   "development;libgantrixa0j-dev" "program;rkparam")
    list(GET component_package 0 component)
    list(GET component_package 1 package)
    install(FILES packaging/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

# The Debian packages. The library's dependencies come from dpkg-shlibdeps, and it declares
# its SONAME in a shlibs file; the other two depend on exactly this version of it.
set(GANTRIX_PACKAGE_MAINTAINER "GantrixA0J team <gantrixa0j@example.org>"
    CACHE STRING "Maintainer field of the Debian packages: the project team and its address")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME gantrixa0j)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "GantrixA0J team")
set(CPACK_PACKAGE_CONTACT "${GANTRIX_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development program)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE gantrixa0j)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# rkparam needs the library, which no installed package gives yet: dpkg-shlibdeps finds it in
# the build tree, and the dependency on the library package is written out.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR})
set(GANTRIX_EXACT_LIBRARY "${GANTRIX_LIBRARY_PACKAGE} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${GANTRIX_LIBRARY_PACKAGE})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# The loader cache is refreshed through dpkg's ldconfig trigger.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/triggers)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
    "parameter mode of a ladder-programming tool for A-series PLCs\n"
    "Control engineers set the parameters of an A-series PLC project (memory\n"
    "capacities, latch ranges, timer and counter partition, I/O slots and module\n"
    "names, supplementary functions) in dialogs that check every entry against\n"
    "the CPU type's limits and write the project's parameter file.\n"
    "\n"
    "This package holds the shared library libGantrixA0J, which host programs\n"
    "call through its C interface, and the workbook templates of its parameter\n"
    "printing and network editing.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libgantrixa0j-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
# The CMake package finds Qt 6 Widgets and PrintSupport, which the library's interface names.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${GANTRIX_EXACT_LIBRARY}, qt6-base-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "parameter mode of a ladder-programming tool for A-series PLCs (development)\n"
    "The C interface of libGantrixA0J for host programs that run the parameter\n"
    "mode of an A-series PLC project: the header GantrixA0J.h, the link to the\n"
    "library, and the files with which pkg-config (gantrixa0j) and CMake\n"
    "(find_package(GantrixA0J)) find them.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME rkparam)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${GANTRIX_EXACT_LIBRARY}")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
    "set the parameters of A-series PLC projects\n"
    "rkparam makes A-series PLC projects and opens the parameter mode on them:\n"
    "dialogs for memory capacities, latch ranges, timers and counters, I/O\n"
    "assignment and supplementary functions that check every entry against the\n"
    "CPU type's limits. Started without a project, from the desktop menu or a\n"
    "terminal, it shows the recent projects and opens or makes one. Without a\n"
    "display it shows, checks, changes, compares, exports and imports a\n"
    "project's parameters.")
foreach(component IN ITEMS LIBRARY DEVELOPMENT PROGRAM)
    string(JOIN "" CPACK_DEBIAN_${component}_DESCRIPTION ${CPACK_DEBIAN_${component}_DESCRIPTION})
endforeach()
include(CPack)
