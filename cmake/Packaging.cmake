# What "cmake --install" lays out and what "cmake --build build --target package"
# makes of it: a .deb on Debian, a zip elsewhere. Included at the end of the
# top-level CMakeLists.txt, after the executables are defined.

include(GNUInstallDirs)

set(KERBANO_PACKAGING_DIR ${CMAKE_CURRENT_LIST_DIR}/../packaging)
cmake_path(NORMAL_PATH KERBANO_PACKAGING_DIR)

install(TARGETS kerbano RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET kerbano-ecr-sim)
    install(TARGETS kerbano-ecr-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(KERBANO_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/kerbano)
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${KERBANO_DOC_DIR})
if(EXISTS ${CMAKE_SOURCE_DIR}/sim/README.md)
    install(FILES ${CMAKE_SOURCE_DIR}/sim/README.md DESTINATION ${KERBANO_DOC_DIR}
            RENAME README.ecr-sim.md)
endif()
install(FILES ${KERBANO_PACKAGING_DIR}/param.ini DESTINATION ${KERBANO_DOC_DIR}/examples)

if(UNIX AND NOT APPLE)
    # systemd reads units, users and folders from <prefix>/lib, never from the
    # multiarch library folder.
    install(FILES ${KERBANO_PACKAGING_DIR}/kerbano.service DESTINATION lib/systemd/system)
    install(FILES ${KERBANO_PACKAGING_DIR}/user/kerbano.service DESTINATION lib/systemd/user)
    install(FILES ${KERBANO_PACKAGING_DIR}/kerbano.sysusers DESTINATION lib/sysusers.d
            RENAME kerbano.conf)
    install(FILES ${KERBANO_PACKAGING_DIR}/kerbano.tmpfiles DESTINATION lib/tmpfiles.d
            RENAME kerbano.conf)
    install(FILES ${KERBANO_PACKAGING_DIR}/kerbano.desktop
            DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES ${KERBANO_PACKAGING_DIR}/kerbano.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

set(CPACK_PACKAGE_NAME kerbano)
set(CPACK_PACKAGE_VENDOR "Kerbano")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Driver for Greek fiscal cash registers and fiscal printers")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Kerbano stands between a business application and a Greek fiscal cash register.\n"
    "The application writes a print file into a folder; Kerbano drives the register\n"
    "over RS-232 or TCP and writes a result file back. It runs as a service\n"
    "(kerbano --headless) or in the desktop session with a window and tray icon.\n"
    "kerbano-ecr-sim, a virtual register, is included for trying it out.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)

set(KERBANO_PACKAGE_MAINTAINER "Kerbano developers <kerbano@example.invalid>"
    CACHE STRING "Maintainer named in the Debian package")

if(WIN32)
    set(CPACK_GENERATOR ZIP)
else()
    set(CPACK_GENERATOR DEB)
endif()

set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${KERBANO_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${KERBANO_PACKAGING_DIR}/debian/postinst
    ${KERBANO_PACKAGING_DIR}/debian/prerm
    ${KERBANO_PACKAGING_DIR}/debian/postrm)

# The SQLite driver is a plugin Qt loads at run time, so no library scan finds
# it; adduser makes the service's user where systemd-sysusers is missing.
set(KERBANO_DEBIAN_RUNTIME_EXTRA "libqt6sql6-sqlite, adduser")
find_program(KERBANO_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(KERBANO_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_DEPENDS ${KERBANO_DEBIAN_RUNTIME_EXTRA})
else()
    set(CPACK_DEBIAN_PACKAGE_DEPENDS
        "libqt6core6, libqt6network6, libqt6serialport6, libqt6sql6, libqt6gui6, libqt6widgets6, libcurl4, ${KERBANO_DEBIAN_RUNTIME_EXTRA}")
endif()

include(CPack)

# Builds the package and looks inside it: contents, control fields, the units,
# and the packed kerbano starting.
find_program(KERBANO_DPKG_DEB dpkg-deb)
if(KERBANO_DPKG_DEB AND NOT WIN32)
    add_test(NAME package_deb
             COMMAND ${CMAKE_SOURCE_DIR}/tests/package/check-deb.sh
                     ${CMAKE_CPACK_COMMAND} ${CMAKE_BINARY_DIR} ${PROJECT_VERSION}
                     ${CMAKE_SOURCE_DIR}/samples)
    set_tests_properties(package_deb PROPERTIES LABELS package TIMEOUT 300)
endif()
