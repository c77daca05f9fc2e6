# Every build traps signed overflow and out-of-bounds array indexes: several
# counters and fixed arrays of the tool must abort the process when they are
# exceeded.  RLK_SANITIZE selects the AddressSanitizer + UBSan configuration,
# where UBSan's own (non-recovering) checks cover the same faults.
# RLK_SANITIZE=thread selects ThreadSanitizer instead, keeping the traps.
option(RLK_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer (or =thread: ThreadSanitizer)" OFF)

option(RLK_LINE_TABLES "Debug information as line tables only (-g1): backtraces and sanitizer reports keep their files and lines, and the build takes about a quarter less time" OFF)

add_compile_options(-Wall -Wextra -Werror)
if(RLK_LINE_TABLES)
  add_compile_options(-g1)
else()
  add_compile_options(-g)
endif()
add_compile_definitions(_GLIBCXX_ASSERTIONS)

# Sanitizer builds use -O1, the level the sanitizers are made for: reports
# stay exact and the build is faster than at -O2.
if(RLK_SANITIZE)
  add_compile_options(-O1)
endif()

if(RLK_SANITIZE STREQUAL "thread")
  # ThreadSanitizer for the code with threads (-DRLK_SANITIZE=thread); the
  # overflow and bounds traps stay.
  add_compile_options(-fsanitize=thread -fsanitize=signed-integer-overflow,bounds -fsanitize-undefined-trap-on-error
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(RLK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
else()
  add_compile_options(-fsanitize=signed-integer-overflow,bounds -fsanitize-undefined-trap-on-error)
endif()

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# Collect the sources of one source directory into a static library.
function(rlk_directory_library name)
  cmake_parse_arguments(ARG "" "" "EXCLUDE" ${ARGN})
  file(GLOB _srcs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.c)
  foreach(_ex ${ARG_EXCLUDE})
    list(REMOVE_ITEM _srcs ${CMAKE_CURRENT_SOURCE_DIR}/${_ex})
  endforeach()
  if(NOT _srcs)
    # A directory whose first sources have not landed yet still yields a
    # library, so that dependants link.
    set(_empty ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp)
    file(WRITE ${_empty} "")
    set(_srcs ${_empty})
  endif()
  add_library(${name} STATIC ${_srcs})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
endfunction()
