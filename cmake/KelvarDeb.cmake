# `cpack` makes the Debian packages: for the scene and for the libraries for hosts what it takes to run and what it
# takes to build against them, the widgets, and the viewer. The preset `package` configures a build for it. Without
# gzip, which the changelog needs, there are none.

find_program(GZIP gzip)
if(NOT GZIP)
    message(STATUS "Debian packages cannot be made: there is no gzip")
    return()
endif()

set(KELVAR_PACKAGE_CONTACT "Kelvar UI Graphics Scene maintainers <maintainers@kelvar.invalid>"
    CACHE STRING "Maintainer that the Debian packages name")

configure_file(${CMAKE_SOURCE_DIR}/cmake/debian/changelog.in ${CMAKE_BINARY_DIR}/package/changelog.Debian @ONLY)
execute_process(COMMAND ${GZIP} -9nkf ${CMAKE_BINARY_DIR}/package/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvar-ui-graphics-scene)
set(CPACK_PACKAGE_CONTACT ${KELVAR_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# Libraries of other packages are found by the tools, our own by NEEDS below, which asks for the very same version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

# One Debian package out of a part of what is installed.
#   kelvar_deb(<part> NAME <package> SECTION <section> SUMMARY <words> TEXT <lines>
#              [BINARIES] [LIBRARIES] [NEEDS <parts>] [DEPENDS <packages>] [RECOMMENDS <packages>]
#              [SUGGESTS <packages>])
macro(kelvar_deb part)
    cmake_parse_arguments(DEB "BINARIES;LIBRARIES" "NAME;SECTION;SUMMARY;TEXT;DEPENDS;RECOMMENDS;SUGGESTS" "NEEDS" ${ARGN})
    string(TOUPPER ${part} PART)
    list(APPEND CPACK_COMPONENTS_ALL ${part})
    set(CPACK_DEBIAN_${PART}_PACKAGE_NAME ${DEB_NAME})
    set(CPACK_DEBIAN_${PART}_PACKAGE_SECTION ${DEB_SECTION})
    set(CPACK_COMPONENT_${PART}_DESCRIPTION "${DEB_SUMMARY}\n${DEB_TEXT}")
    set(CPACK_COMPONENT_${PART}_DEPENDS ${DEB_NEEDS})
    set(CPACK_DEBIAN_${PART}_PACKAGE_DEPENDS ${DEB_DEPENDS})
    set(CPACK_DEBIAN_${PART}_PACKAGE_RECOMMENDS ${DEB_RECOMMENDS})
    set(CPACK_DEBIAN_${PART}_PACKAGE_SUGGESTS ${DEB_SUGGESTS})
    if(DEB_LIBRARIES OR DEB_BINARIES)
        set(CPACK_DEBIAN_${PART}_PACKAGE_SHLIBDEPS ON)
        list(APPEND KELVAR_DEB_BINARY_PACKAGES ${DEB_NAME})
    endif()
    if(DEB_LIBRARIES)
        set(CPACK_DEBIAN_${PART}_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/cmake/debian/triggers)
    endif()
    install(
        FILES ${CMAKE_SOURCE_DIR}/cmake/debian/copyright ${CMAKE_BINARY_DIR}/package/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${DEB_NAME}
        COMPONENT ${part}
        EXCLUDE_FROM_ALL)
endmacro()

if(KELVAR_QT_MAJOR EQUAL 5)
    set(qt_dev qtbase5-dev)
else()
    set(qt_dev qt${KELVAR_QT_MAJOR}-base-dev)
endif()
set(scene_words "camera, rendering and picking for an OpenGL view")
set(scene_text
    "One object gives the OpenGL view of an application its camera, its rendering\n\
and its picking: navigation by mouse and keys, lights and overlays, hit tests\n\
with hover, drag, drop and click, pictures of any size, and every setting in\n\
a property tree that can be edited and stored.\n\n")
set(host_words "hosts for 3D scenes")
set(host_text
    "A window that shows a scene and feeds it all input, recordings of sessions,\n\
edits that can be undone, triangle meshes that are picked by their parts, and\n\
models read from files.\n\n")

kelvar_deb(
    runtime
    NAME libkelvar-ui-graphics-scene${PROJECT_VERSION_MAJOR}
    SECTION libs
    SUMMARY ${scene_words}
    TEXT "${scene_text}This package contains the shared libraries."
    LIBRARIES
    RECOMMENDS fonts-dejavu-core)
kelvar_deb(
    dev
    NAME libkelvar-ui-graphics-scene-dev
    SECTION libdevel
    SUMMARY "${scene_words} (development)"
    TEXT "${scene_text}This package contains the headers, a CMake package and a pkg-config file."
    NEEDS runtime
    DEPENDS "${qt_dev}, libboost-dev, libgl-dev")

if(KELVAR_BUILD_HOSTS)
    kelvar_deb(
        host
        NAME libkelvar-ui-graphics-host${PROJECT_VERSION_MAJOR}
        SECTION libs
        SUMMARY ${host_words}
        TEXT "${host_text}This package contains the shared libraries and the program that reads models."
        LIBRARIES
        NEEDS runtime)
    kelvar_deb(
        widgets
        NAME libkelvar-ui-graphics-widgets${PROJECT_VERSION_MAJOR}
        SECTION libs
        SUMMARY "widgets for 3D scenes"
        TEXT "A scene as a widget, undo, and panels for its properties and its views.\n\n\
This package contains the shared library."
        LIBRARIES
        NEEDS host runtime)
    kelvar_deb(
        host_dev
        NAME libkelvar-ui-graphics-host-dev
        SECTION libdevel
        SUMMARY "${host_words} (development)"
        TEXT "${host_text}This package contains the headers of the libraries and of the widgets."
        NEEDS host widgets dev)
    kelvar_deb(
        viewer
        NAME kelvar-view
        SECTION graphics
        SUMMARY "viewer for 3D models"
        TEXT "Shows models of all common formats, in a window or as a picture in a file:\n\
parts can be looked at from all sides, told by their names, marked and moved."
        BINARIES
        NEEDS host runtime widgets
        RECOMMENDS qt${KELVAR_QT_MAJOR}-image-formats-plugins
        SUGGESTS "xvfb, xauth")
endif()

include(CPack)
