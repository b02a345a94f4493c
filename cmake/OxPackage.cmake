# The Debian packages, one for each install component; `make package` configures a tree of its own for them.
option(OX_PACKAGE "Make Debian packages: prefix /usr, no search paths in the binaries" OFF)
if(NOT OX_PACKAGE)
  return()
endif()

# ox_debian(COMPONENT PACKAGE SECTION MULTIARCH DEPENDS SYNOPSIS TEXT): a package, and the documents that every
# one has. Only CPack of 3.31 knows the field Multi-Arch; until then it is a second line of the section.
function(ox_debian component package section multiarch depends synopsis text)
  if(multiarch)
    string(APPEND section "\nMulti-Arch: ${multiarch}")
  endif()
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${synopsis}\n${text}" PARENT_SCOPE)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endfunction()

set(debian ${CMAKE_CURRENT_LIST_DIR}/debian)
execute_process(COMMAND gzip -9nc ${debian}/changelog OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.gz
  COMMAND_ERROR_IS_FATAL ANY)

set(what "oxarray owns the one data type of a numerical computing environment: the
N-dimensional array of numbers, text, cells or fields, full or sparse. It
creates, indexes, converts, joins, compares, shares and serialises arrays.")
set(same "(= ${PROJECT_VERSION})")
ox_debian(runtime libox1 libs same "" "N-dimensional arrays for numerical computing, shared libraries"
  "${what}\n\nThis package has the libraries that programs and extension modules run with.")
ox_debian(devel libox-dev libdevel same "libox1 ${same}"
  "N-dimensional arrays for numerical computing, development files"
  "${what}\n\nThis package has the headers for C and C++, the CMake package and the file\nfor pkg-config.")
# Of one architecture through what it depends on: neither same nor foreign.
ox_debian(fortran libox-fortran-dev libdevel "" "libox-dev ${same}"
  "N-dimensional arrays for numerical computing, Fortran interface"
  "${what}\n\nThis package has the sources of the Fortran module, which the user's own\ncompiler translates, and declarations for code in fixed form.")
ox_debian(tools ox-tools math foreign "libox1 ${same}"
  "N-dimensional arrays for numerical computing, command-line tool"
  "${what}\n\nThis package has vel, which lists, shows, converts, checks and compares files\nof arrays and runs extension modules.")
ox_debian(doc ox-doc doc foreign "" "N-dimensional arrays for numerical computing, documents"
  "${what}\n\nThis package has the guide for authors of extension modules and the\ndescriptions of formats.")

install(CODE "execute_process(COMMAND gzip -9nf \"\$ENV{DESTDIR}/usr/${CMAKE_INSTALL_MANDIR}/man1/vel.1\" COMMAND_ERROR_IS_FATAL ANY)"
  COMPONENT tools)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME oxarray)
set(CPACK_PACKAGE_CONTACT "oxarray maintainers <maintainers@oxarray.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL runtime devel fortran tools doc)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_STRIP_FILES OFF) # The symbols move to the -dbgsym packages.
set(CPACK_SET_DESTDIR ON)  # Files are made for /usr, not for the folder where they are gathered.
foreach(component FORTRAN DOC)
  set(CPACK_DEBIAN_${component}_PACKAGE_ARCHITECTURE all)
endforeach()
foreach(component RUNTIME TOOLS)
  set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_${component}_DEBUGINFO_PACKAGE ON)
endforeach()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/libs)
# CPack adds scripts that call ldconfig, besides the trigger that suffices: lintian warns, nothing is harmed.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/triggers ${debian}/shlibs)
include(CPack)
