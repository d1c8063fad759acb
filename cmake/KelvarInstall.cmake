# What `cmake --install` puts where: the libraries with their public headers under include/Kelvar, the CMake
# package KelvarUIGraphicsScene, a pkg-config file for the scene and one for each library for hosts, the library's
# images, and the programs. What is installed comes in parts, `cmake --install --component`, one a Debian package:
# `runtime` and `dev` for the scene, `host`, `widgets` and `host_dev` for the libraries for hosts, `viewer`.

include(CMakePackageConfigHelpers)

set(KELVAR_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/KelvarUIGraphicsScene)
set(KELVAR_INSTALL_PCDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(KELVAR_INSTALL_IMAGEDIR ${CMAKE_INSTALL_DATADIR}/kelvar-ui-graphics-scene/images)
set(KELVAR_INSTALL_READERDIR ${CMAKE_INSTALL_LIBEXECDIR}/kelvar-ui-graphics-scene)

# For each component of the CMake package: the part with its library, the part with its headers, and what its
# pkg-config file says.
set(KELVAR_PART_Scene runtime)
set(KELVAR_DEV_PART_Scene dev)
set(KELVAR_PART_Host host)
set(KELVAR_DEV_PART_Host host_dev)
set(KELVAR_SUMMARY_Host "Windows that show a scene, input, recordings and edit steps")
set(KELVAR_REQUIRES_Host "kelvar-ui-graphics-scene Qt${KELVAR_QT_MAJOR}Gui")
set(KELVAR_PART_Mesh host)
set(KELVAR_DEV_PART_Mesh host_dev)
set(KELVAR_SUMMARY_Mesh "Triangle meshes in a scene")
set(KELVAR_REQUIRES_Mesh "kelvar-ui-graphics-scene")
set(KELVAR_PART_Import host)
set(KELVAR_DEV_PART_Import host_dev)
set(KELVAR_SUMMARY_Import "Model files to meshes")
set(KELVAR_REQUIRES_Import "kelvar-ui-graphics-mesh")
set(KELVAR_PART_Widgets widgets)
set(KELVAR_DEV_PART_Widgets host_dev)
set(KELVAR_SUMMARY_Widgets "A scene as a widget, with panels and undo")
set(KELVAR_REQUIRES_Widgets "kelvar-ui-graphics-host Qt${KELVAR_QT_MAJOR}Widgets")

# One library with the headers of its folder and its export header. Headers in a folder `internal` are the library's
# own, those in `reader` a program's. tests/package compiles all others as a user of the installed package does, so a public header that needs an
# internal one is found there.
function(kelvar_install_library target folder component)
    install(
        TARGETS ${target}
        EXPORT KelvarUIGraphics${component}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT ${KELVAR_PART_${component}}
                NAMELINK_COMPONENT ${KELVAR_DEV_PART_${component}})
    install(
        DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/ ${CMAKE_BINARY_DIR}/include/${folder}/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Kelvar/${folder}
        COMPONENT ${KELVAR_DEV_PART_${component}}
        FILES_MATCHING
        PATTERN "*.h"
        PATTERN internal EXCLUDE
        PATTERN reader EXCLUDE)
    set_property(GLOBAL APPEND PROPERTY KELVAR_COMPONENTS ${component})
endfunction()

# One program in a folder below the prefix, where it finds the libraries; in the build tree it lies there, too.
function(kelvar_install_program target folder part)
    file(RELATIVE_PATH libraries /prefix/${folder} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(
        ${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder})
    install(TARGETS ${target} RUNTIME DESTINATION ${folder} COMPONENT ${part})
endfunction()

# The pkg-config file of a component, from a template. The prefix is told relative to the file, so that an installed
# tree can be moved.
function(kelvar_install_pc component template)
    string(TOLOWER ${component} name)
    set(summary ${KELVAR_SUMMARY_${component}})
    set(requires ${KELVAR_REQUIRES_${component}})
    file(RELATIVE_PATH prefix_from_pc /prefix/${KELVAR_INSTALL_PCDIR} /prefix)
    string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
    set(file ${CMAKE_BINARY_DIR}/package/kelvar-ui-graphics-${name}.pc)
    configure_file(${CMAKE_SOURCE_DIR}/cmake/${template} ${file} @ONLY)
    install(FILES ${file} DESTINATION ${KELVAR_INSTALL_PCDIR} COMPONENT ${KELVAR_DEV_PART_${component}})
endfunction()

# Everything that is installed once.
function(kelvar_install_package)
    get_property(components GLOBAL PROPERTY KELVAR_COMPONENTS)
    list(REMOVE_DUPLICATES components)
    foreach(component ${components})
        install(
            EXPORT KelvarUIGraphics${component}Targets
            NAMESPACE Kelvar::
            DESTINATION ${KELVAR_INSTALL_CMAKEDIR}
            COMPONENT ${KELVAR_DEV_PART_${component}})
        if(component STREQUAL "Scene")
            kelvar_install_pc(Scene kelvar-ui-graphics-scene.pc.in)
        else()
            kelvar_install_pc(${component} kelvar-ui-graphics-component.pc.in)
        endif()
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

    # Beside the libraries that are built, too, which find it from there.
    configure_file(${CMAKE_SOURCE_DIR}/resources/logoKelvar.png
                   ${CMAKE_BINARY_DIR}/${KELVAR_INSTALL_IMAGEDIR}/logoKelvar.png COPYONLY)
    install(
        FILES ${CMAKE_SOURCE_DIR}/resources/logoKelvar.png
        DESTINATION ${KELVAR_INSTALL_IMAGEDIR}
        COMPONENT runtime)
endfunction()
