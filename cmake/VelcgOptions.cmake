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

if(VELCG_SANITIZER)
  set(_san_flags "")
  foreach(_san IN LISTS VELCG_SANITIZER)
    string(TOLOWER "${_san}" _san)
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

# Declares a GoogleTest executable and registers its tests with CTest.
function(velcg_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock_main velcg_build_flags)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${ARG_LABELS}")
endfunction()
