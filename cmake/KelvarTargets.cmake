# What every target of this project has in common, said once.

include(GenerateExportHeader)

# Warnings as errors, and the sanitizers where they were asked for.
function(kelvar_compile_options target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Woverloaded-virtual -Werror)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
    if(KELVAR_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=undefined)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
endfunction()

# One shared library: alias, output name, version, and an export header that is generated as
# FOLDER/MACRO-lowercased next to the sources' include root. Installed, it finds its siblings beside it. A library
# of the framework has no COMPONENT; any other names the one that finds it.
#   kelvar_library(<target> ALIAS <name> OUTPUT <name> FOLDER <folder under the include root> EXPORT <macro>
#                  [COMPONENT <component>] SOURCES ... PUBLIC <libraries> PRIVATE <libraries>)
function(kelvar_library target)
    cmake_parse_arguments(ARG "" "ALIAS;OUTPUT;FOLDER;EXPORT;COMPONENT" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(Kelvar::${ARG_ALIAS} ALIAS ${target})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME "${ARG_OUTPUT}" VERSION ${PROJECT_VERSION}
                                               SOVERSION ${PROJECT_VERSION_MAJOR} EXPORT_NAME "${ARG_ALIAS}"
                                               INSTALL_RPATH "$ORIGIN")
    string(TOLOWER ${ARG_EXPORT} header)
    generate_export_header(${target} BASE_NAME ${ARG_EXPORT} EXPORT_MACRO_NAME ${ARG_EXPORT}
                           EXPORT_FILE_NAME ${CMAKE_BINARY_DIR}/include/${ARG_FOLDER}/${header}.h)
    target_include_directories(
        ${target} PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}>
                         $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/Framework/UI.Graphics>
                         $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>
                         $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/Kelvar>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    # What a library uses it must name. The sanitizers leave their run time to the program.
    if(NOT KELVAR_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    kelvar_compile_options(${target})
    if(NOT ARG_COMPONENT)
        set(ARG_COMPONENT Scene)
    endif()
    kelvar_install_library(${target} ${ARG_FOLDER} ${ARG_COMPONENT})
endfunction()

# One GoogleTest program. LOGIC programs need no OpenGL context; GL programs bring up a real one (llvmpipe
# under Xvfb is enough) and see every gl* call through the recorder. One that takes longer than a minute hangs;
# under the sanitizers, with the million events of ./test --full, it takes many times as long.
#   kelvar_test(<target> [GL] SOURCES ... LIBRARIES ...)
function(kelvar_test target)
    cmake_parse_arguments(ARG "GL" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES} GTest::gmock)
    if(ARG_GL)
        target_link_libraries(${target} PRIVATE kelvar_test_gl)
        # The recorded functions must come ahead of the libraries' own.
        set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
    else()
        target_link_libraries(${target} PRIVATE GTest::gmock_main)
    endif()
    kelvar_compile_options(${target})
    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES TIMEOUT 60)
    if(KELVAR_SANITIZE)
        set_tests_properties(
            ${target}
            PROPERTIES TIMEOUT 3000
                       ENVIRONMENT LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_SOURCE_DIR}/tests/support/leaks.supp)
    endif()
endfunction()
