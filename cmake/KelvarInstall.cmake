# What `cmake --install` puts where: the libraries with their public headers under include/Kelvar, the CMake
# package KelvarUIGraphicsScene, the pkg-config file kelvar-ui-graphics-scene and the library's images.
# Component `runtime` is what a program needs to run, `dev` what it needs to be built.

include(CMakePackageConfigHelpers)

set(KELVAR_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/KelvarUIGraphicsScene)
set(KELVAR_INSTALL_IMAGEDIR ${CMAKE_INSTALL_DATADIR}/kelvar-ui-graphics-scene/images)

# The Debian package that a component of the CMake package comes in, and the one with its headers.
set(KELVAR_PACKAGE_Scene runtime)
set(KELVAR_PACKAGE_Host host)
set(KELVAR_PACKAGE_Mesh host)
set(KELVAR_PACKAGE_Import host)
set(KELVAR_PACKAGE_Widgets widgets)

# One library with the headers of its folder and its export header. Headers in a folder `internal` are the library's
# own. tests/package compiles all others as a user of the installed package does, so a public header that needs an
# internal one is found there.
function(kelvar_install_library target folder component)
    set(dev host_dev)
    if(component STREQUAL "Scene")
        set(dev dev)
    endif()
    install(
        TARGETS ${target}
        EXPORT KelvarUIGraphics${component}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT ${KELVAR_PACKAGE_${component}}
                NAMELINK_COMPONENT ${dev})
    install(
        DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/ ${CMAKE_BINARY_DIR}/include/${folder}/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Kelvar/${folder}
        COMPONENT ${dev}
        FILES_MATCHING
        PATTERN "*.h"
        PATTERN internal EXCLUDE)
    set_property(GLOBAL APPEND PROPERTY KELVAR_COMPONENTS ${component})
endfunction()

# Everything that is installed once.
function(kelvar_install_package)
    get_property(components GLOBAL PROPERTY KELVAR_COMPONENTS)
    list(REMOVE_DUPLICATES components)
    foreach(component ${components})
        set(dev host_dev)
        if(component STREQUAL "Scene")
            set(dev dev)
        endif()
        install(
            EXPORT KelvarUIGraphics${component}Targets
            NAMESPACE Kelvar::
            DESTINATION ${KELVAR_INSTALL_CMAKEDIR}
            COMPONENT ${dev})
    endforeach()
    configure_package_config_file(
        ${CMAKE_SOURCE_DIR}/cmake/KelvarUIGraphicsSceneConfig.cmake.in
        ${CMAKE_BINARY_DIR}/package/KelvarUIGraphicsSceneConfig.cmake
        INSTALL_DESTINATION ${KELVAR_INSTALL_CMAKEDIR}
        PATH_VARS KELVAR_INSTALL_IMAGEDIR)
    write_basic_package_version_file(
        ${CMAKE_BINARY_DIR}/package/KelvarUIGraphicsSceneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
    install(
        FILES ${CMAKE_BINARY_DIR}/package/KelvarUIGraphicsSceneConfig.cmake
              ${CMAKE_BINARY_DIR}/package/KelvarUIGraphicsSceneConfigVersion.cmake
        DESTINATION ${KELVAR_INSTALL_CMAKEDIR}
        COMPONENT dev)

    # The prefix is told relative to the file, so that an installed tree can be moved.
    file(RELATIVE_PATH prefix_from_pc /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
    configure_file(${CMAKE_SOURCE_DIR}/cmake/kelvar-ui-graphics-scene.pc.in
                   ${CMAKE_BINARY_DIR}/package/kelvar-ui-graphics-scene.pc @ONLY)
    install(
        FILES ${CMAKE_BINARY_DIR}/package/kelvar-ui-graphics-scene.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT dev)
    install(
        FILES ${CMAKE_SOURCE_DIR}/resources/logoKelvar.png
        DESTINATION ${KELVAR_INSTALL_IMAGEDIR}
        COMPONENT runtime)
endfunction()
