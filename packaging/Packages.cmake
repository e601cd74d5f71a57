# SPDX-License-Identifier: Apache-2.0
# One Debian package for each component of the installation. "cmake --workflow --preset packages" makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qavplatform)
# Every package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "Qav Platform <qav@example.com>" CACHE STRING "Maintainer of the packages")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/directory_modes.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/finish_packages.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL core runtime sdk plugin workbench service)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE qavplatform)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# What the libraries of the machine ask for; the packages among themselves ask for their own version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# The symbols of a release go into packages of their own. Those of a debug build are large, and nobody ships it.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
else()
  set(CPACK_STRIP_FILES ON)
endif()
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What Debian wants in each package.
set(changelog "${PROJECT_SOURCE_DIR}/packaging/debian/changelog")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${changelog}")
execute_process(COMMAND gzip -9nc "${changelog}" OUTPUT_FILE "${PROJECT_BINARY_DIR}/packaging/changelog.gz"
  COMMAND_ERROR_IS_FATAL ANY)

# qav_package(<component> NAME <package> SECTION <section> SUMMARY <line> DESCRIPTION <text>
#   [NEEDS <component>...] [DEPENDS <package>...] [RECOMMENDS <package>...] [CONTROL <file>...])
macro(qav_package component)
  cmake_parse_arguments(ARG "" "NAME;SECTION;SUMMARY;DESCRIPTION" "NEEDS;DEPENDS;RECOMMENDS;CONTROL" ${ARGN})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${ARG_NAME})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${ARG_SECTION})
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${ARG_SUMMARY}\n${ARG_DESCRIPTION}")
  set(CPACK_COMPONENT_${upper}_DEPENDS ${ARG_NEEDS})
  list(JOIN ARG_DEPENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
  list(JOIN ARG_RECOMMENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_RECOMMENDS)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${ARG_CONTROL})
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/debian/copyright" "${PROJECT_SOURCE_DIR}/NOTICE"
    "${PROJECT_BINARY_DIR}/packaging/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${ARG_NAME}" COMPONENT ${component})
endmacro()

# qav_library_package(<component> NAME <package> LIBRARIES <library>... SUMMARY <line> DESCRIPTION <text> [NEEDS <component>...])
# A package of shared libraries. The shlibs file is what dpkg-shlibdeps makes of a program that needs one of them.
macro(qav_library_package component)
  cmake_parse_arguments(LIBRARY "" "NAME;SUMMARY;DESCRIPTION" "LIBRARIES;NEEDS" ${ARGN})
  set(shlibs "")
  foreach(library IN LISTS LIBRARY_LIBRARIES)
    string(APPEND shlibs "libqav_${library} ${PROJECT_VERSION_MAJOR} ${LIBRARY_NAME} (>= ${PROJECT_VERSION})\n")
  endforeach()
  file(CONFIGURE OUTPUT packaging/${component}/shlibs CONTENT "${shlibs}")
  qav_package(${component} NAME ${LIBRARY_NAME} SECTION libs NEEDS ${LIBRARY_NEEDS}
    CONTROL "${PROJECT_BINARY_DIR}/packaging/${component}/shlibs" "${PROJECT_SOURCE_DIR}/packaging/debian/triggers"
    SUMMARY "${LIBRARY_SUMMARY}" DESCRIPTION "${LIBRARY_DESCRIPTION}")
  file(CONFIGURE OUTPUT packaging/${component}/lintian-overrides
    CONTENT "# The libraries are one unit: they are built, released and required together.
${LIBRARY_NAME}: package-name-doesnt-match-sonames
")
  install(FILES "${PROJECT_BINARY_DIR}/packaging/${component}/lintian-overrides" COMPONENT ${component}
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides" RENAME ${LIBRARY_NAME})
endmacro()

qav_library_package(core NAME libqavplatform-core${PROJECT_VERSION_MAJOR} LIBRARIES utils nvservice
  SUMMARY "libraries without widgets of the account group and risk platform"
  DESCRIPTION "Records, their encoding and text files, which the data service and the client\nshare.")

qav_library_package(runtime NAME libqavplatform${PROJECT_VERSION_MAJOR} LIBRARIES luawrapper wq qav NEEDS core
  SUMMARY "libraries with widgets of the account group and risk platform"
  DESCRIPTION "Widgets, tables and data clients that the client and its plug-ins share, with\nthe themes of the widgets.")
# The themes are in the same place in every version.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_BREAKS libqavplatform1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_REPLACES libqavplatform1)

qav_package(sdk NAME libqavplatform-dev SECTION libdevel NEEDS runtime
  DEPENDS qtbase5-dev libboost-dev
  SUMMARY "SDK for plug-ins of the account group and risk client"
  DESCRIPTION "Public headers, import targets and the CMake package QavPlatform, which builds\na plug-in of the client with one function.")

qav_package(plugin NAME qav-account-group-risk SECTION misc NEEDS runtime
  SUMMARY "panels for account groups, their risk rules and their history"
  DESCRIPTION "Two plug-ins of the client: one keeps groups of trading accounts and the risk\nrules of each group, the other shows who changed what, restores earlier states\nand lists contradictions in the data.")

qav_package(workbench NAME qav-workbench SECTION misc NEEDS runtime
  DEPENDS libqt5sql5-sqlite breeze-icon-theme fonts-noto-cjk qttranslations5-l10n
  RECOMMENDS qav-account-group-risk
  SUMMARY "desktop client of the account group and risk platform"
  DESCRIPTION "Loads plug-ins, docks their panels and keeps their layout. It works with data\nservices on the network or with a database of its own.")

configure_file(packaging/debian/service/conffiles.in packaging/conffiles @ONLY)
qav_package(service NAME qav-dataservice SECTION database NEEDS core
  DEPENDS libqt5sql5-sqlite libqt5sql5-psql "systemd | systemd-standalone-sysusers"
  RECOMMENDS postgresql-client
  CONTROL "${PROJECT_BINARY_DIR}/packaging/conffiles"
    "${PROJECT_SOURCE_DIR}/packaging/debian/service/postinst"
    "${PROJECT_SOURCE_DIR}/packaging/debian/service/prerm"
    "${PROJECT_SOURCE_DIR}/packaging/debian/service/postrm"
  SUMMARY "data service of the account group and risk platform"
  DESCRIPTION "The network server of one or more sub-systems on a SQLite file or a PostgreSQL\ncluster, and the command line that administers its database: users, rights,\nimport and export, audit, backup, consistency.")

include(CPack)

# Everything that the packages hold.
add_custom_target(packaged)
add_dependencies(packaged qav_luawrapper qav_qav QavAccountGroupRisk QavHistory qav-workbench qav-dataserviced qav-admin
  qav-sample-data
  qav_client_icons qav_man_pages)
