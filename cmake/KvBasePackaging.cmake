# Debian packages of the library, one runtime and one development package per
# Qt version, named after Debian's library policy so both sets install side by
# side:
#   Qt 5: libkvbase1       (libKvBase.so.1)      libkvbase-dev
#   Qt 6: libkvbaseqt6-1   (libKvBaseQt6.so.1)   libkvbaseqt6-dev
# Built with `cmake --build <dir> --target package` (see ./setup.sh package),
# best from a build configured with CMAKE_INSTALL_PREFIX=/usr so the library
# lands in Debian's multiarch directory.
string(TOLOWER "lib${KVBASE_NAME}" kvbase_deb_base)
if(kvbase_deb_base MATCHES "[0-9]$")
    set(kvbase_deb_runtime "${kvbase_deb_base}-${PROJECT_VERSION_MAJOR}")
else()
    set(kvbase_deb_runtime "${kvbase_deb_base}${PROJECT_VERSION_MAJOR}")
endif()
if(KVBASE_QT_MAJOR_VERSION STREQUAL "5")
    set(kvbase_deb_qt_dev "qtbase5-dev (>= 5.15)")
else()
    set(kvbase_deb_qt_dev "qt6-base-dev (>= ${KVBASE_QT_MIN_VERSION})")
endif()

set(KVBASE_PACKAGE_CONTACT "KvBase maintainers <kvbase@localhost>"
    CACHE STRING "Maintainer field of the Debian packages")
set(KVBASE_PACKAGE_RELEASE 1 CACHE STRING "Debian revision of the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${kvbase_deb_base})
set(CPACK_PACKAGE_VENDOR "KvBase")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${KVBASE_PACKAGE_CONTACT}")
# Each package's first description line is its own summary (below), not the
# project's one.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
# Only the library's own components; tools and examples are not packaged here.
set(CPACK_COMPONENTS_ALL Runtime Development)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KVBASE_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SOURCE kvbase)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# dpkg-shlibdeps computes the runtime package's dependencies (libqt5core5a or
# libqt6core6, libstdc++6, ...), and the runtime package gets a shlibs file so
# packages built against it get their dependency computed in turn.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(kvbase_deb_version "${PROJECT_VERSION}-${KVBASE_PACKAGE_RELEASE}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${kvbase_deb_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "shared base library of radio-monitoring applications (Qt ${KVBASE_QT_MAJOR_VERSION})
KvBase offers error handling with a process-wide error handler, GSM band
plans and user bands, time stamps and units, geographic coordinates in
eight notations over transverse Mercator grids, HMAC-signed JSON Web Tokens,
Qt signal helpers and an observer pattern.

This package contains the shared library built against Qt ${KVBASE_QT_MAJOR_VERSION}.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${kvbase_deb_base}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${kvbase_deb_runtime} (= ${kvbase_deb_version}), ${kvbase_deb_qt_dev}, libboost-dev (>= 1.74)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "development files of KvBase for Qt ${KVBASE_QT_MAJOR_VERSION}
KvBase is the shared base library of a family of radio-monitoring
applications.

This package contains the headers (include/${KVBASE_NAME}), the CMake package
${KVBASE_NAME} and the pkg-config file ${KVBASE_NAME}.pc.")

include(CPack)
