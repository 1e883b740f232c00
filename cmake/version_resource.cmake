# add_version_resource(<target> <description> <file name>): gives a Windows executable the project's version.
function(add_version_resource target VERSION_DESCRIPTION VERSION_FILE_NAME)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
    configure_file(${CMAKE_SOURCE_DIR}/resources/version.rc.in ${script} @ONLY)
    target_sources(${target} PRIVATE ${script})
endfunction()
