# The viewer's package as the desktop and file managers use it.
set(unpacked ${CMAKE_CURRENT_BINARY_DIR}/kelvar-view)

# One step of the script about the unpacked package, if the program that it takes is there.
#   kelvar_viewer_test(<step> <program> [<argument> ...])
function(kelvar_viewer_test step program)
    find_program(${program}_found ${program})
    if(NOT ${program}_found)
        message(STATUS "package_viewer_${step} is left out: there is no ${program}")
        return()
    endif()
    add_test(NAME package_viewer_${step} COMMAND ${script} ${step} ${unpacked} ${ARGN})
    set_tests_properties(package_viewer_${step} PROPERTIES ${quick} FIXTURES_REQUIRED kelvar-view)
endfunction()

set(work ${CMAKE_CURRENT_BINARY_DIR}/viewer)
kelvar_viewer_test(entry desktop-file-validate)
kelvar_viewer_test(formats update-mime-database /usr/share/mime/packages/freedesktop.org.xml ${work}-formats)
kelvar_viewer_test(manual man)
kelvar_viewer_test(windowclass xprop)

set(picture $<TARGET_FILE:picture_check> ${work}-thumbnail ${model} 2,2=000000 110,150=64676c)
kelvar_viewer_test(thumbnail prlimit ${picture})
kelvar_viewer_test(thumbnail_without_display xvfb-run ${picture})
kelvar_viewer_test(damaged prlimit ${work}-damaged ${model})
kelvar_viewer_test(large prlimit ${work}-large)
kelvar_viewer_test(slow prlimit ${work}-slow ${model})
