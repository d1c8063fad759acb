# `format-check` fails on any C++ file that clang-format would change; `format` changes them.
find_program(CLANG_FORMAT NAMES clang-format-14 clang-format REQUIRED)
file(GLOB_RECURSE KELVAR_CXX_FILES CONFIGURE_DEPENDS
     ${CMAKE_SOURCE_DIR}/Framework/*.h ${CMAKE_SOURCE_DIR}/Framework/*.cpp
     ${CMAKE_SOURCE_DIR}/hosts/*.h ${CMAKE_SOURCE_DIR}/hosts/*.cpp
     ${CMAKE_SOURCE_DIR}/fuzz/*.h ${CMAKE_SOURCE_DIR}/fuzz/*.cpp
     ${CMAKE_SOURCE_DIR}/tests/*.h ${CMAKE_SOURCE_DIR}/tests/*.cpp
     ${CMAKE_SOURCE_DIR}/benchmarks/*.h ${CMAKE_SOURCE_DIR}/benchmarks/*.cpp
     ${CMAKE_SOURCE_DIR}/examples/*.h ${CMAKE_SOURCE_DIR}/examples/*.cpp)
if(KELVAR_CXX_FILES)
    add_custom_target(format-check COMMAND ${CLANG_FORMAT} --dry-run --Werror ${KELVAR_CXX_FILES} VERBATIM)
    add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${KELVAR_CXX_FILES} VERBATIM)
endif()
