# What "cmake --install" lays out, and the Debian package that CPack makes of it
# (scripts/package). Paths follow GNUInstallDirs, so a configure with CMAKE_INSTALL_PREFIX=/usr
# puts the library in Debian's multiarch directory.
include(CMakePackageConfigHelpers)

set(GANTRIX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/GantrixA0J)
set(GANTRIX_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/gantrixa0j)

# The library with its SONAME links, its public header, and rkparam. The workbook templates
# go beside the library, where GetAppPath (the directory of the loaded library) finds them.
install(TARGETS GantrixA0J EXPORT GantrixA0JTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS rkparam RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# find_package(GantrixA0J): the imported target GantrixA0J::GantrixA0J.
install(EXPORT GantrixA0JTargets NAMESPACE GantrixA0J:: DESTINATION ${GANTRIX_CMAKE_DIR})
configure_package_config_file(cmake/GantrixA0JConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfig.cmake
                              INSTALL_DESTINATION ${GANTRIX_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/GantrixA0JConfigVersion.cmake
        DESTINATION ${GANTRIX_CMAKE_DIR})

# pkg-config --cflags --libs gantrixa0j. The prefix is found from the file's own place, so the
# file is right in whatever prefix "cmake --install --prefix" puts it.
file(RELATIVE_PATH GANTRIX_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" GANTRIX_PC_TO_PREFIX "${GANTRIX_PC_TO_PREFIX}")
configure_file(cmake/gantrixa0j.pc.in gantrixa0j.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/gantrixa0j.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The man page (compressed, as Debian keeps them), the desktop entry and its icon, and the
# package's copyright and changelog.
find_program(GANTRIX_GZIP gzip REQUIRED)
add_custom_command(OUTPUT rkparam.1.gz changelog.gz
                   COMMAND ${GANTRIX_GZIP} -9 -n -c ${CMAKE_CURRENT_SOURCE_DIR}/packaging/rkparam.1
                           > rkparam.1.gz
                   COMMAND ${GANTRIX_GZIP} -9 -n -c ${CMAKE_CURRENT_SOURCE_DIR}/packaging/changelog
                           > changelog.gz
                   DEPENDS packaging/rkparam.1 packaging/changelog VERBATIM)
add_custom_target(gantrix_docs ALL DEPENDS rkparam.1.gz changelog.gz)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/rkparam.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/rkparam.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/gantrixa0j.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
        DESTINATION ${GANTRIX_DOC_DIR})

# The Debian package: one package with the library, its development files and rkparam; its
# dependencies come from dpkg-shlibdeps.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME gantrixa0j)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "GantrixA0J developers")
set(CPACK_PACKAGE_CONTACT "GantrixA0J developers <gantrixa0j@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "parameter mode of a ladder-programming tool for A-series PLCs")
set(CPACK_PACKAGE_DESCRIPTION
    "Control engineers set the parameters of an A-series PLC project (memory\n"
    "capacities, latch ranges, timer and counter partition, I/O slots and module\n"
    "names, supplementary functions) in dialogs that check every entry against\n"
    "the CPU type's limits and write the project's parameter file.\n"
    "\n"
    "This package holds the shared library libGantrixA0J with its C interface\n"
    "for host programs (header, pkg-config and CMake files) and rkparam, the host\n"
    "program that makes projects and opens the parameter mode on them.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The loader cache is refreshed through dpkg's ldconfig trigger; the scripts given here take
# the place of the ones that CPack would write to call ldconfig itself.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/triggers
    ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/postinst
    ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/postrm)
include(CPack)
