# What `cmake --install` puts where: libraries, headers, the CMake package oxarray and oxarray.pc.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Installed libraries find each other beside themselves, so that the prefix can be moved.
set_target_properties(ox ut fl PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS ox ut fl EXPORT oxarray
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT devel
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT devel)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT devel
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp" PATTERN "*.def" PATTERN "*.inc")

# gdb looks here for the file that goes with the library's real path, once that prefix's folder is known to it.
install(FILES ${PROJECT_SOURCE_DIR}/tools/gdb/ox_printers.py COMPONENT runtime
  DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load/\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
  RENAME libox.so.${PROJECT_VERSION}-gdb.py)

# Sources, so that the user's own compiler makes the .mod files.
set(OX_FORTRAN_INSTALL_DIR ${CMAKE_INSTALL_DATADIR}/ox/fortran)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/fortran/ DESTINATION ${OX_FORTRAN_INSTALL_DIR} COMPONENT fortran
  PATTERN README.md EXCLUDE)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/oxarray)
install(EXPORT oxarray NAMESPACE ox:: FILE oxarrayTargets.cmake DESTINATION ${package_dir} COMPONENT devel)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/oxarrayConfig.cmake.in
  ${PROJECT_BINARY_DIR}/oxarrayConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/oxarrayConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/oxarrayConfig.cmake ${PROJECT_BINARY_DIR}/oxarrayConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/OxModule.cmake DESTINATION ${package_dir} COMPONENT devel)

# The .pc file names its prefix relative to itself; how many folders up depends on the library folder.
file(RELATIVE_PATH up_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" up_to_prefix "${up_to_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/oxarray.pc.in ${PROJECT_BINARY_DIR}/oxarray.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/oxarray.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT devel)

if(TARGET vel)
  file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(vel PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS vel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  set(made ${PROJECT_BINARY_DIR}/tools/vel)
  install(FILES ${made}/vel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${made}/vel.bash RENAME vel COMPONENT tools
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/vel.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/ox COMPONENT tools)
endif()

# What users read: the guide and the formats, the examples, and the pages of the reference (`make docs`)
# if they have been made. The other texts are about the source tree.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/guide DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(FILES ${PROJECT_SOURCE_DIR}/docs/element-format.md ${PROJECT_SOURCE_DIR}/docs/vel-file.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc
  PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/build/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc OPTIONAL)
