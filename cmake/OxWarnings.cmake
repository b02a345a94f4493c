# One interface target with the warning flags that every target of the project takes.
add_library(ox_warnings INTERFACE)
target_compile_options(ox_warnings INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wno-sign-conversion -Wno-missing-field-initializers
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>
  $<$<BOOL:${OX_WERROR}>:-Werror>)
