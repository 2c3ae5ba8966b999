# The kinds of targets that this project has.

# The platform's headers and the public ones; everything compiles against these and nothing else,
# unless it says so.
#
# Third-party headers are included as system headers, so that their warnings are not ours.

# zerva_calls_directly(TARGET)
#
# What a library calls of its own is called directly, or not called at all but put in its place: not
# looked up, in case a program brings another function of that name along, which ours do not expect.
# And memory is given back without its size, which the C++ library takes only to drop it in another
# call. Instrumented builds are left as they are.
function(zerva_calls_directly target)
  if(ZERVA_SANITIZE STREQUAL "" AND NOT ZERVA_COVERAGE AND NOT ZERVA_FUZZ)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition -fno-sized-deallocation)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
  endif()
endfunction()

# zerva_runtime_library(NAME SOURCES... [DEPENDS target...])
#
# One of the six libraries of the platform, lib<NAME>.so.
function(zerva_runtime_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(${name} SHARED ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC zerva_include ${arg_DEPENDS})
  zerva_calls_directly(${name})
  zerva_install_library(${name})
endfunction()

# zerva_service_library(NAME SOURCES...)
#
# A library that is opened at run time: a service, proxies, invokers. It sees what a service author
# sees, and is really unmapped when it is closed. It is linked to the platform libraries, not to the
# configurator.
function(zerva_service_library name)
  cmake_parse_arguments(arg "" "" "SOURCES" ${ARGN})
  add_library(${name} MODULE ${arg_SOURCES})
  target_compile_features(${name} PRIVATE cxx_std_17)
  target_link_libraries(${name} PRIVATE zerva_include ClientUtils LoggingHandler
                                        ExceptionPublisher)
endfunction()

# zerva_test(NAME SOURCES... [LIBRARIES target...] [TIMEOUT seconds] [LABELS label...]
#            [ENVIRONMENT name=value...] [ON_ONE_PROCESSOR_TOO])
#
# A GoogleTest program; each of its tests is a test of ctest. TIMEOUT is for one test, 120 if not
# given, and three times as long where the program is instrumented.
#
# ON_ONE_PROCESSOR_TOO: the whole program is one more test, with one processor for all its threads
# and for the programs that it starts.
function(zerva_test name)
  cmake_parse_arguments(arg "ON_ONE_PROCESSOR_TOO" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  if(ZERVA_SANITIZE)
    math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 3")
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE zerva_test_support ${arg_LIBRARIES})
  target_precompile_headers(${name} REUSE_FROM zerva_test_pch)

  # The watchdog of the test program comes before ctest's own limit, since it tells where it hangs.
  math(EXPR seconds "${arg_TIMEOUT} * 5 / 6")
  list(APPEND arg_ENVIRONMENT "ZERVA_TEST_SECONDS=${seconds}" ${ZERVA_SANITIZER_ENVIRONMENT})

  gtest_discover_tests(${name} TEST_PREFIX "${name}/" DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${arg_TIMEOUT})
  # The values that are lists do not survive that call; ctest reads them here, after the tests.
  set(lists "${CMAKE_CURRENT_BINARY_DIR}/${name}_lists.cmake")
  file(CONFIGURE OUTPUT "${lists}" @ONLY CONTENT [=[
foreach(test IN LISTS @name@_TESTS)
  set_tests_properties("${test}" PROPERTIES ENVIRONMENT "@arg_ENVIRONMENT@" LABELS "@arg_LABELS@")
endforeach()
]=])
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${lists}")

  if(arg_ON_ONE_PROCESSOR_TOO)
    math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 5")
    list(APPEND arg_ENVIRONMENT "ZERVA_TEST_ON_ONE_PROCESSOR=1")
    add_test(NAME "${name}/on_one_processor" COMMAND ${name})
    set_tests_properties("${name}/on_one_processor" PROPERTIES
      TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}" LABELS "${arg_LABELS}")
  endif()
endfunction()

# zerva_fuzz_target(NAME SOURCES... [LIBRARIES target...])
#
# A function that takes any bytes, fuzz_<NAME>. With ZERVA_FUZZ it is driven by libFuzzer, and built
# with the target zerva_fuzz; else it is a test, which hands it each file of corpus/<NAME>.
function(zerva_fuzz_target name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(fuzz_${name} ${arg_SOURCES})
  target_include_directories(fuzz_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(fuzz_${name} PRIVATE zerva_fuzz_support ${arg_LIBRARIES})
  if(ZERVA_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    add_dependencies(zerva_fuzz fuzz_${name})
  else()
    add_test(NAME fuzz/${name}_takes_its_corpus
             COMMAND fuzz_${name} "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
    set_tests_properties(fuzz/${name}_takes_its_corpus PROPERTIES
      TIMEOUT 360 LABELS fuzz ENVIRONMENT "${ZERVA_SANITIZER_ENVIRONMENT}")
  endif()
endfunction()
