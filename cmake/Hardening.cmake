# Options that make memory errors hard to exploit, for every program and library of a release build,
# also for those that Qt's tools generate. Distributions pass most of them by themselves; a build
# from the sources does not.
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
  # Undefined first, because redefining a distribution's level is a warning. One SHELL: argument,
  # because CMake would drop an option that is given elsewhere, too.
  add_compile_options(
    "$<$<CONFIG:Release>:-fstack-protector-strong;-fstack-clash-protection>"
    "$<$<CONFIG:Release>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${fortify_level}>")
  add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro,-z,now>")
endif()
