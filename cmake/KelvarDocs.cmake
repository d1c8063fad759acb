# The target `docs`: the reference of the public headers and the guides, in docs/html of the build folder. It fails on any
# warning.

find_program(DOXYGEN doxygen)
if(DOXYGEN)
    file(
        CONFIGURE
        OUTPUT ${CMAKE_BINARY_DIR}/docs/Doxyfile
        CONTENT
            "@INCLUDE = \"@CMAKE_SOURCE_DIR@/docs/Doxyfile\"
PROJECT_NUMBER = @PROJECT_VERSION@
INPUT = \"@CMAKE_SOURCE_DIR@/Framework/UI.Graphics\" \"@CMAKE_SOURCE_DIR@/hosts\" \"@CMAKE_SOURCE_DIR@/docs/manual.md\" \"@CMAKE_SOURCE_DIR@/docs/architecture.md\" \"@CMAKE_SOURCE_DIR@/docs/pictures.md\"
STRIP_FROM_PATH = \"@CMAKE_SOURCE_DIR@/Framework/UI.Graphics\" \"@CMAKE_SOURCE_DIR@\"
EXCLUDE_PATTERNS = */internal/* */hosts/import/reader/* */hosts/viewer/*
OUTPUT_DIRECTORY = \"@CMAKE_BINARY_DIR@/docs\"
"
        @ONLY)
    add_custom_target(docs COMMAND ${DOXYGEN} ${CMAKE_BINARY_DIR}/docs/Doxyfile VERBATIM)
endif()
