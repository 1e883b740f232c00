# The logo as a picture and as the program's icon, drawn by tools/logo.

set(PICTURE_FOLDER ${CMAKE_BINARY_DIR}/generated/pictures)
set(PICTURE_FILES ${PICTURE_FOLDER}/logo.png ${PICTURE_FOLDER}/program.ico)
set(LOGO ${CMAKE_SOURCE_DIR}/tools/logo/logo)
file(MAKE_DIRECTORY ${PICTURE_FOLDER})
add_custom_command(
    OUTPUT ${PICTURE_FILES}
    COMMAND Python3::Interpreter ${LOGO} png 256 ${PICTURE_FOLDER}/logo.png
    COMMAND Python3::Interpreter ${LOGO} ico ${PICTURE_FOLDER}/program.ico
    DEPENDS ${LOGO}
    COMMENT "Drawing the logo"
    VERBATIM)
add_custom_target(pictures DEPENDS ${PICTURE_FILES})
