# ox_add_module(NAME SOURCES...): builds the extension module NAME.vex against the array library.
function(ox_add_module name)
  add_library(${name} MODULE ${ARGN})
  # Only the entry point is looked up, and it carries no export mark of its own.
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".vex"
    C_VISIBILITY_PRESET default CXX_VISIBILITY_PRESET default)
  target_link_libraries(${name} PRIVATE ox::ox)
endfunction()
