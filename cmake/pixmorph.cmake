# Compile settings and the few rules that every engine, test and benchmark is built by.

add_library(pixmorph_options INTERFACE)
target_compile_options(pixmorph_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wimplicit-fallthrough
  # Floating-point results are part of the contract: no fused multiply-add that the code does not ask for.
  -ffp-contract=off)
target_include_directories(pixmorph_options INTERFACE ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(pixmorph_options INTERFACE Threads::Threads)

# Sanitizers, for everything that is built: a program must bring the runtime that the library expects.
add_library(pixmorph_sanitizers INTERFACE)
if(PIXMORPH_SANITIZE)
  target_compile_options(pixmorph_sanitizers INTERFACE -fsanitize=${PIXMORPH_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(pixmorph_sanitizers INTERFACE -fsanitize=${PIXMORPH_SANITIZE})
endif()
target_link_libraries(pixmorph_options INTERFACE pixmorph_sanitizers)

# Flags of the instruction sets. Only files whose names end in the set's suffix are compiled with them.
set(PIXMORPH_FLAGS_sse41 -msse4.1)
set(PIXMORPH_FLAGS_avx2 -mavx2)
# gcc 12 takes the deliberately undefined operands in its own headers of 512-bit operations for mistakes.
set(PIXMORPH_FLAGS_avx512 -mavx2 -mavx512f -mavx512bw -mavx512dq
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized -Wno-uninitialized>)

# pixmorph_room(NAME [USES engines...] [OFFERS headers...]): where the sources of an engine in folder NAME find headers.
# Two include roots are staged for each engine: `inside` leads to its whole folder and is for the engine alone, `offers`
# leads to the headers that others may include.
function(pixmorph_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "USES;OFFERS")
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  set(stage ${PROJECT_BINARY_DIR}/rooms/${name})
  if(NOT room_OFFERS)
    file(GLOB_RECURSE room_OFFERS CONFIGURE_DEPENDS RELATIVE ${folder} ${folder}/*.h)
    list(FILTER room_OFFERS EXCLUDE REGEX "(^|/)x86/")
  endif()
  file(REMOVE_RECURSE ${stage})
  file(MAKE_DIRECTORY ${stage}/inside)
  file(CREATE_LINK ${folder} ${stage}/inside/${name} SYMBOLIC)
  foreach(header IN LISTS room_OFFERS)
    get_filename_component(parent ${stage}/offers/${name}/${header} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${folder}/${header} ${stage}/offers/${name}/${header} SYMBOLIC)
  endforeach()
  set(roots ${stage}/inside)
  foreach(used IN LISTS room_USES)
    list(APPEND roots ${PROJECT_BINARY_DIR}/rooms/${used}/offers)
  endforeach()
  set_property(GLOBAL PROPERTY PIXMORPH_ROOTS_${name} "${roots}")
endfunction()

# pixmorph_engine(NAME files...): the objects of one engine, which has a room of the same name. They become part of the
# shared library and of every test.
set_property(GLOBAL PROPERTY PIXMORPH_ENGINES "")
function(pixmorph_engine name)
  add_library(pixmorph_${name} OBJECT ${ARGN})
  target_link_libraries(pixmorph_${name} PUBLIC pixmorph_options)
  get_property(roots GLOBAL PROPERTY PIXMORPH_ROOTS_${name})
  if(NOT roots)
    message(FATAL_ERROR "engine ${name}: src/CMakeLists.txt does not say what it may use (pixmorph_room)")
  endif()
  target_include_directories(pixmorph_${name} PRIVATE ${roots})
  foreach(file IN LISTS ARGN)
    if(file MATCHES "_(sse41|avx2|avx512)\\.cpp$")
      set_source_files_properties(${file} PROPERTIES COMPILE_OPTIONS "${PIXMORPH_FLAGS_${CMAKE_MATCH_1}}")
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY PIXMORPH_ENGINES pixmorph_${name})
endfunction()

# pixmorph_link_engines(TARGET): links the library's objects into a test or benchmark, so that it reaches what the shared
# library hides, and every header under src/.
function(pixmorph_link_engines target)
  get_property(engines GLOBAL PROPERTY PIXMORPH_ENGINES)
  target_link_libraries(${target} PRIVATE pixmorph_options)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  foreach(engine IN LISTS engines)
    target_link_libraries(${target} PRIVATE ${engine})
  endforeach()
endfunction()

# What every test program is built with. It is the library's code that is optimised and tested in full: a test is compiled
# in half the time without. GoogleTest's header takes most of the rest, so it is compiled once for all programs; a compiler
# cache does the same and cannot see into precompiled headers, so that with one they are left out.
add_library(pixmorph_test_options INTERFACE)
target_link_libraries(pixmorph_test_options INTERFACE pixmorph_options GTest::gtest_main)
target_include_directories(pixmorph_test_options INTERFACE ${PROJECT_SOURCE_DIR}/tests)
target_compile_options(pixmorph_test_options INTERFACE $<$<CONFIG:Release>:-O1>)

function(pixmorph_test_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE pixmorph_test_options)
  if(TARGET pixmorph_test_headers)
    target_precompile_headers(${name} REUSE_FROM pixmorph_test_headers)
  endif()
endfunction()

# pixmorph_test(NAME files...): a GoogleTest program that reaches the library's inside.
function(pixmorph_test name)
  pixmorph_test_program(${name} ${ARGN})
  pixmorph_link_engines(${name})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600 LABELS ${name})
endfunction()

# pixmorph_component_test(NAME files...): a GoogleTest program that uses the shared library and include/pixmorph only.
function(pixmorph_component_test name)
  pixmorph_test_program(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE pixmorph)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600 LABELS ${name})
endfunction()
