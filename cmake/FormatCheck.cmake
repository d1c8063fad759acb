# `format-check` fails on any C++ file that clang-format would change; `format` changes them. Neither exists where
# clang-format is missing: the libraries build without it.
find_program(CLANG_FORMAT NAMES clang-format-14 clang-format)
file(GLOB_RECURSE KELVAR_CXX_FILES CONFIGURE_DEPENDS
     ${CMAKE_SOURCE_DIR}/Framework/*.h ${CMAKE_SOURCE_DIR}/Framework/*.cpp
     ${CMAKE_SOURCE_DIR}/hosts/*.h ${CMAKE_SOURCE_DIR}/hosts/*.cpp
     ${CMAKE_SOURCE_DIR}/fuzz/*.h ${CMAKE_SOURCE_DIR}/fuzz/*.cpp
     ${CMAKE_SOURCE_DIR}/tests/*.h ${CMAKE_SOURCE_DIR}/tests/*.cpp
     ${CMAKE_SOURCE_DIR}/benchmarks/*.h ${CMAKE_SOURCE_DIR}/benchmarks/*.cpp
     ${CMAKE_SOURCE_DIR}/examples/*.h ${CMAKE_SOURCE_DIR}/examples/*.cpp)
if(CLANG_FORMAT)
    add_custom_target(format-check COMMAND ${CLANG_FORMAT} --dry-run --Werror ${KELVAR_CXX_FILES} VERBATIM)
    add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${KELVAR_CXX_FILES} VERBATIM)
endif()
