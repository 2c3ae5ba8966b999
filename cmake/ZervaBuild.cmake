# What holds for every target: language, word size, warnings, visibility, instrumentation and where
# the results are put. The presets choose among the options.

set(ZERVA_BITS 32 CACHE STRING "Word size of everything that is built: 32 or 64")
set(ZERVA_SANITIZE "" CACHE STRING "Empty, or what to instrument for: address or thread")
option(ZERVA_COVERAGE "Count which lines and branches tests reach" OFF)
option(ZERVA_FUZZ "Build the fuzz targets; needs clang" OFF)
option(ZERVA_TESTS "Build the tests" ON)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
# A tree that was moved as a whole keeps working, and no path of this machine gets into a binary.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_BUILD_RPATH "$ORIGIN/../lib;$ORIGIN")
set(CMAKE_INSTALL_RPATH "${CMAKE_BUILD_RPATH}")
set(CMAKE_SKIP_INSTALL_RPATH OFF)

find_program(ZERVA_CCACHE ccache)
if(ZERVA_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ZERVA_CCACHE}")
endif()

add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wformat=2 -Werror
  # g++ marks inline statics unique otherwise, and the loader never unmaps a library that has one.
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
add_link_options(-Wl,-z,now,-z,relro)
if(NOT ZERVA_FUZZ)
  # What clang's instrumentation calls is in the program, which a library is not linked with.
  add_link_options(-Wl,-z,defs)
endif()

if(ZERVA_BITS EQUAL 32)
  add_compile_options(-m32)
  add_link_options(-m32)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
elseif(NOT ZERVA_BITS EQUAL 64)
  message(FATAL_ERROR "ZERVA_BITS is 32 or 64, not '${ZERVA_BITS}'")
endif()

# More than this costs the compiler much where all is instrumented, and finds nothing more.
if(NOT ZERVA_SANITIZE STREQUAL "" AND NOT ZERVA_FUZZ)
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -DNDEBUG")
endif()

# What instrumented programs are run with; tests get it from zerva_test.
set(ZERVA_SANITIZER_ENVIRONMENT "")
if(ZERVA_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  set(ZERVA_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=1:check_initialization_order=1:strict_string_checks=1"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
elseif(ZERVA_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
  set(ZERVA_SANITIZER_ENVIRONMENT "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")
elseif(NOT ZERVA_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ZERVA_SANITIZE is address or thread, not '${ZERVA_SANITIZE}'")
endif()

if(ZERVA_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

if(ZERVA_FUZZ)
  # What the fuzz targets feed on: which branches an input has reached, in whatever library.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
