# ox_add_module(NAME SOURCES...): builds the extension module NAME.vex against the array library.
function(ox_add_module name)
  add_library(${name} MODULE ${ARGN})
  # Only the entry point is looked up, and it carries no export mark of its own.
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".vex"
    C_VISIBILITY_PRESET default CXX_VISIBILITY_PRESET default)
  target_link_libraries(${name} PRIVATE ox::ox)
endfunction()

# ox_add_fortran_module(NAME [IMPLICIT] SOURCES...): the same for Fortran sources, with the module
# ox_fortran. With IMPLICIT the entry point is an external `subroutine vexfunction(nlhs, plhs, nrhs,
# prhs)` that takes everything by reference, and oxfort.inc declares the library's functions.
function(ox_add_fortran_module name)
  cmake_parse_arguments(arg IMPLICIT "" "" ${ARGN})
  if(arg_IMPLICIT)
    ox_add_module(${name} ${arg_UNPARSED_ARGUMENTS} ${OX_FORTRAN_DIR}/vex_gateway.c)
  else()
    ox_add_module(${name} ${arg_UNPARSED_ARGUMENTS} ${OX_FORTRAN_DIR}/ox_fortran.F90)
  endif()
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE Fortran
    Fortran_MODULE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${name}.mods)
  target_include_directories(${name} PRIVATE ${OX_FORTRAN_DIR})
endfunction()
