# `cpack` makes two Debian packages: the libraries, and what it takes to build against them. The preset `package`
# configures a build for it.

set(KELVAR_PACKAGE_CONTACT "Kelvar UI Graphics Scene maintainers <maintainers@kelvar.invalid>"
    CACHE STRING "Maintainer that the Debian packages name")

set(runtime_package libkelvar-ui-graphics-scene${PROJECT_VERSION_MAJOR})
set(dev_package libkelvar-ui-graphics-scene-dev)

# Copyright and changelog go into the documentation folder of each package.
find_program(GZIP gzip REQUIRED)
configure_file(${CMAKE_SOURCE_DIR}/cmake/debian/changelog.in ${CMAKE_BINARY_DIR}/package/changelog.Debian @ONLY)
execute_process(COMMAND ${GZIP} -9nkf ${CMAKE_BINARY_DIR}/package/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
foreach(component runtime dev)
    install(
        FILES ${CMAKE_SOURCE_DIR}/cmake/debian/copyright ${CMAKE_BINARY_DIR}/package/changelog.Debian.gz
        DESTINATION share/doc/${${component}_package}
        COMPONENT ${component}
        EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvar-ui-graphics-scene)
set(CPACK_PACKAGE_CONTACT ${KELVAR_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "camera, rendering and picking for an OpenGL view\n\
One object gives the OpenGL view of an application its camera, its rendering\n\
and its picking: navigation by mouse and keys, lights and overlays, hit tests\n\
with hover, drag, drop and click, pictures of any size, and every setting in\n\
a property tree that can be edited and stored.\n\n\
This package contains the shared libraries.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${dev_package})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
if(KELVAR_QT_MAJOR EQUAL 5)
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qtbase5-dev, libboost-dev, libgl-dev")
else()
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qt${KELVAR_QT_MAJOR}-base-dev, libboost-dev, libgl-dev")
endif()
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "camera, rendering and picking for an OpenGL view (development)\n\
One object gives the OpenGL view of an application its camera, its rendering\n\
and its picking.\n\n\
This package contains the headers, a CMake package and a pkg-config file.")

include(CPack)
