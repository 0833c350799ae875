# How every target of this project is made: the warnings, the sanitizers and the compiler cache are
# set here. The folders call these functions with their files.
include_guard()

find_program(AULORA_CCACHE ccache)
if(AULORA_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${AULORA_CCACHE})
endif()

add_library(aulora_options INTERFACE)
target_compile_options(aulora_options INTERFACE -Wall -Wextra -Wpedantic)
if(AULORA_WARNINGS_AS_ERRORS)
  target_compile_options(aulora_options INTERFACE -Werror)
endif()
target_compile_definitions(
  aulora_options
  INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
            QT_NO_URL_CAST_FROM_STRING QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(AULORA_SANITIZE)
  target_compile_options(aulora_options INTERFACE -fsanitize=address,undefined
                                                  -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(aulora_options INTERFACE -fsanitize=address,undefined)
endif()
if(AULORA_COVERAGE)
  target_compile_options(aulora_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(aulora_options INTERFACE --coverage)
endif()

# aulora_add_library(<name> SOURCES <files> [LINK <libraries>]): a static library of one folder.
function(aulora_add_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  qt_add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE aulora_options)
endfunction()

# aulora_add_qml_library(<name> URI <uri> SOURCES <files> [QML <files>] [SINGLETONS <files>]
# [DEPENDENCIES <modules its C++ types derive from>] [LINK <libraries>]): a static library that is also
# one QML module.
# A program or test links <name>plugin for every module that its QML imports; libraries link <name>.
function(aulora_add_qml_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "URI" "SOURCES;QML;SINGLETONS;DEPENDENCIES;LINK")
  if(arg_SINGLETONS)
    set_source_files_properties(${arg_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
  endif()
  qt_add_library(${name} STATIC)
  string(REPLACE "." "/" uri_path ${arg_URI})
  qt_add_qml_module(
    ${name}
    URI ${arg_URI}
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${uri_path}
    SOURCES ${arg_SOURCES}
    QML_FILES ${arg_QML} ${arg_SINGLETONS}
    DEPENDENCIES QtQuick ${arg_DEPENDENCIES}
    IMPORT_PATH ${CMAKE_BINARY_DIR}/qml)
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE aulora_options)
endfunction()

# aulora_add_test(<name> SOURCES <files> [LINK <libraries>] [LABELS <labels>] [TIMEOUT <seconds>]):
# one Qt Test program that is one CTest test, run without a display.
function(aulora_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT" "SOURCES;LINK;LABELS")
  qt_add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${arg_LINK} aulora_options)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  if(NOT arg_LABELS)
    set(arg_LABELS unit)
  endif()
  set_tests_properties(
    ${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
                       ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_QUICK_BACKEND=software")
endfunction()
