# What makes a fault in memory hard to exploit, in whatever people run: every program and library of
# a release build, those that Qt's tools generate included. A distribution's own flags say much the
# same, but nobody who builds from the sources passes them.
include_guard()

include(CheckPIESupported)
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  # Level 3, which also checks sizes known only at run time, came with GCC 12 and clang 15.
  set(fortify_level 2)
  if((CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
     OR (CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL
                                                    15))
    set(fortify_level 3)
  endif()
  # A distribution's level would be redefined, which is a warning. Written as one argument: the
  # first of two that are equal elsewhere would be dropped.
  add_compile_options(
    "$<$<CONFIG:Release>:-fstack-protector-strong;-fstack-clash-protection>"
    "$<$<CONFIG:Release>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${fortify_level}>")
  add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now>")
endif()
