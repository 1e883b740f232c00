# Compiler options of everything that this project compiles itself; third-party code is built without them.

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# A compiler cache may rewrite the paths that it is given, relative to the build folder.
file(RELATIVE_PATH relative_source_dir ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})

add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror>
    $<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=>
    $<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${relative_source_dir}=>
    # Symmetric transfer between coroutines must be a real tail call in every build.
    $<$<COMPILE_LANGUAGE:CXX>:-foptimize-sibling-calls>)

if(WIN32)
    target_compile_definitions(project_options INTERFACE
        UNICODE _UNICODE _WIN32_WINNT=0x0A00 WINVER=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN STRICT)
    target_compile_options(project_options INTERFACE
        $<$<COMPILE_LANGUAGE:C,CXX>:-ffunction-sections -fdata-sections>)
    target_link_options(project_options INTERFACE -Wl,--gc-sections)
endif()

# For all of the program: it is optimised as a whole. Tests are not, because the thread-local variables of the C++
# library cannot be reached from code that is.
add_library(whole_program INTERFACE)
if(WIN32)
    target_compile_options(whole_program INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-flto>)
endif()

# For all of the program but what it does in large numbers.
add_library(small_code INTERFACE)
if(WIN32)
    target_compile_options(small_code INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-Oz>)
endif()

# Applies to third-party code too: mixed instrumentation gives false reports.
if(TIDELINK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g)
    add_link_options(-fsanitize=address,undefined)
endif()
if(TIDELINK_SANITIZE_THREADS)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -O1 -g)
    add_link_options(-fsanitize=thread)
endif()
if(TIDELINK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Header-only libraries of the host are reached through a folder of links: the host's own include folder would bring
# its C library into the cross build.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/header-only)
file(CREATE_LINK /usr/include/boost ${CMAKE_BINARY_DIR}/header-only/boost SYMBOLIC)
add_library(boost_headers INTERFACE)
target_include_directories(boost_headers SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/header-only)
