# Warning set and sanitizer switch shared by every target of the project.
add_library(velcg_build_flags INTERFACE)
target_compile_options(velcg_build_flags INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor>
  $<$<CXX_COMPILER_ID:MSVC>:/W4 /permissive->)
if(VELCG_WARNINGS_AS_ERRORS)
  target_compile_options(velcg_build_flags INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang>:-Werror>
    $<$<CXX_COMPILER_ID:MSVC>:/WX>)
endif()

# The sanitizers of VELCG_SANITIZER, lower-cased. The fuzz targets need
# libFuzzer, which only clang provides, and always run under
# AddressSanitizer and UndefinedBehaviorSanitizer.
set(_sanitizers "")
foreach(_san IN LISTS VELCG_SANITIZER)
  string(TOLOWER "${_san}" _san)
  list(APPEND _sanitizers "${_san}")
endforeach()
if(VELCG_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "VELCG_BUILD_FUZZERS needs clang (libFuzzer)")
  endif()
  if("thread" IN_LIST _sanitizers)
    message(FATAL_ERROR "VELCG_BUILD_FUZZERS cannot be combined with the Thread sanitizer")
  endif()
  list(APPEND _sanitizers address undefined)
  list(REMOVE_DUPLICATES _sanitizers)
endif()

if(_sanitizers)
  set(_san_flags "")
  foreach(_san IN LISTS _sanitizers)
    if(_san STREQUAL "address")
      list(APPEND _san_flags -fsanitize=address)
    elseif(_san STREQUAL "undefined")
      list(APPEND _san_flags -fsanitize=undefined -fno-sanitize-recover=undefined)
    elseif(_san STREQUAL "thread")
      list(APPEND _san_flags -fsanitize=thread)
    else()
      message(FATAL_ERROR "Unknown sanitizer '${_san}' in VELCG_SANITIZER")
    endif()
  endforeach()
  list(APPEND _san_flags -fno-omit-frame-pointer)
  add_compile_options(${_san_flags})
  add_link_options(${_san_flags})
endif()

# Every target is instrumented for libFuzzer's coverage feedback; only the
# fuzz targets link the fuzzer runtime and its main (velcg_fuzzer).
if(VELCG_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Declares a GoogleTest executable and registers its tests with CTest.
function(velcg_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock_main velcg_build_flags)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${ARG_LABELS}")
endfunction()

# Declares a libFuzzer target: one source defining LLVMFuzzerTestOneInput,
# linked with the fuzzer runtime and its main.
function(velcg_fuzzer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} velcg_build_flags)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
