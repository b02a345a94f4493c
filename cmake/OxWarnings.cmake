# One interface target with the warning flags that every target of the project takes. Optimising, g++ 12 sees
# overlaps in "text" + std::string() where there are none.
add_library(ox_warnings INTERFACE)
target_compile_options(ox_warnings INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wno-sign-conversion -Wno-missing-field-initializers
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
  $<$<BOOL:${OX_WERROR}>:-Werror>)
