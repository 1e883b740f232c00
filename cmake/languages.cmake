# The language packs, compiled from the translations in languages/.

file(GLOB TRANSLATIONS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/languages/*.po)

# add_language_packs(<target> <folder> [PROGRAM <file name>] [PSEUDO])
#
# A target that compiles every translation into the folder. PROGRAM is the program that the packs are for; PSEUDO adds
# the language that tests use.
function(add_language_packs target folder)
    cmake_parse_arguments(PACKS "PSEUDO" "PROGRAM" "" ${ARGN})
    set(options --source ${ENGLISH_TEXTS} --out ${folder} --version ${PROJECT_VERSION})
    if(PACKS_PROGRAM)
        list(APPEND options --program ${PACKS_PROGRAM})
    endif()
    if(PACKS_PSEUDO)
        list(APPEND options --pseudo)
    endif()
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}.compiled)
    add_custom_command(
        OUTPUT ${stamp}
        COMMAND Python3::Interpreter ${LPACK} compile ${options} ${TRANSLATIONS}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${ENGLISH_TEXTS} ${TRANSLATIONS} ${LPACK} ${LPACK_MODULES}
        COMMENT "Compiling the language packs for ${target}"
        VERBATIM)
    add_custom_target(${target} DEPENDS ${stamp})
endfunction()
