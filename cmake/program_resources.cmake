# add_program_resources(<target>): gives an executable the program's dialogs, manifest and pictures.
function(add_program_resources target)
    set(script ${CMAKE_SOURCE_DIR}/resources/tl_server_config.rc)
    # The resource compiler does not tell what a script includes.
    file(GLOB parts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/*)
    target_sources(${target} PRIVATE ${script})
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS "${parts};${CMAKE_SOURCE_DIR}/src/ui/message_box_ids.h;${PICTURE_FILES}"
        INCLUDE_DIRECTORIES ${PICTURE_FOLDER})
    add_dependencies(${target} pictures)
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/resources ${CMAKE_SOURCE_DIR}/src/ui)
endfunction()
