# The built-in string packs and the constants of their ids, compiled from the English source.
#
# The target string_ids gives `#include "string_ids.h"`; STRING_PACK_FOLDER is where the compiled files are.

# The system's own interpreter, for which the library of PO files is packaged.
set(Python3_EXECUTABLE /usr/bin/python3)
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)

set(LPACK_MODULES catalogue.py checks.py corrections.py header.py name_hash.py pack_file.py placeholders.py problem.py pseudo.py
    source.py string_pack.py)
set(STRING_PACK_FOLDER ${CMAKE_BINARY_DIR}/generated/strings)
set(STRING_PACK_FILES ${STRING_PACK_FOLDER}/common.bin ${STRING_PACK_FOLDER}/program.bin)
set(LPACK ${CMAKE_SOURCE_DIR}/tools/lpack/lpack)

list(TRANSFORM LPACK_MODULES PREPEND ${CMAKE_SOURCE_DIR}/tools/lpack/)
set(ENGLISH_TEXTS ${CMAKE_SOURCE_DIR}/resources/strings/english.toml)
set(string_headers ${STRING_PACK_FOLDER}/string_ids.h ${STRING_PACK_FOLDER}/string_keys.inc)
set(stamp ${STRING_PACK_FOLDER}/compiled)
add_custom_command(
    OUTPUT ${stamp}
    BYPRODUCTS ${STRING_PACK_FILES} ${string_headers}
    COMMAND Python3::Interpreter ${LPACK} compile-builtin ${ENGLISH_TEXTS} --out ${STRING_PACK_FOLDER}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${ENGLISH_TEXTS} ${LPACK} ${LPACK_MODULES}
    COMMENT "Compiling the English texts"
    VERBATIM)
add_custom_target(string_packs DEPENDS ${stamp})

add_library(string_ids INTERFACE)
target_include_directories(string_ids INTERFACE ${STRING_PACK_FOLDER})
add_dependencies(string_ids string_packs)

# Adds the two built-in packs to an executable, as its resources.
function(add_string_resources target)
    set(resources ${CMAKE_SOURCE_DIR}/resources/strings.rc)
    target_sources(${target} PRIVATE ${resources})
    set_source_files_properties(${resources} PROPERTIES
        INCLUDE_DIRECTORIES ${STRING_PACK_FOLDER}
        OBJECT_DEPENDS "${STRING_PACK_FILES}")
    add_dependencies(${target} string_packs)
endfunction()
