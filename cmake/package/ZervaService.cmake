# zerva_add_service_library(NAME SOURCES...)
#
# A library lib<NAME>.so that is opened at run time: a service, or proxies and invokers. Only what is
# marked ZERVA_EXPORT leaves it, and it is really unmapped when it is closed.
function(zerva_add_service_library name)
  add_library(${name} MODULE ${ARGN})
  target_compile_features(${name} PRIVATE cxx_std_17)
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON POSITION_INDEPENDENT_CODE ON)
  # g++ marks inline statics unique otherwise, and the loader never unmaps a library that has one.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  target_link_options(${name} PRIVATE -Wl,-z,defs -Wl,-z,now -Wl,-z,relro)
  target_link_libraries(${name} PRIVATE zerva::service)
endfunction()
