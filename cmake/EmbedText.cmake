# embed_text(TARGET target HEADER name NAMESPACE ns FILES file...)
#
# Makes the header `name` in the build tree and puts it on the include path of `target`. For each
# file it holds one constant of the file's name, every other character turned to "_":
#
#     namespace ns {
#     inline constexpr std::string_view sqlite_sql = ...;   // the whole text of schema/sqlite.sql
#     }
#
# So an installed program carries its texts and needs no data file. A changed file makes the build
# run CMake again, and the header is rewritten only if its content differs. The files are text: a
# file that holds the closing mark of the literal stops the configuration.

# Largest piece of text in one literal, in bytes. Longer texts are written as literals side by side,
# as a compiler need not take more than 65536 characters in one.
set(EMBED_TEXT_PIECE 60000)

function(embed_text)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;HEADER;NAMESPACE" "FILES")
    set(header "#pragma once\n\n#include <string_view>\n\nnamespace ${arg_NAMESPACE} {\n")
    foreach(file IN LISTS arg_FILES)
        get_filename_component(path "${file}" ABSOLUTE)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${path}")
        get_filename_component(name "${path}" NAME)
        string(MAKE_C_IDENTIFIER "${name}" constant)
        embed_text_literal("${path}" literal)
        string(APPEND header "\ninline constexpr std::string_view ${constant} =${literal};\n")
    endforeach()
    string(APPEND header "\n}  // namespace ${arg_NAMESPACE}\n")

    set(folder "${CMAKE_CURRENT_BINARY_DIR}/embedded")
    file(WRITE "${folder}/${arg_HEADER}.new" "${header}")
    configure_file("${folder}/${arg_HEADER}.new" "${folder}/${arg_HEADER}" COPYONLY)
    target_include_directories(${arg_TARGET} PRIVATE "${folder}")
endfunction()

# Puts the file's text into `result`, as raw string literals of whole lines.
function(embed_text_literal path result)
    file(READ "${path}" text)
    if(text MATCHES "\\)embedded\"")
        message(FATAL_ERROR "${path} holds the mark )embedded\" and cannot be embedded")
    endif()
    set(literal "")
    while(TRUE)
        string(LENGTH "${text}" rest)
        set(cut ${rest})
        if(rest GREATER EMBED_TEXT_PIECE)
            string(SUBSTRING "${text}" 0 ${EMBED_TEXT_PIECE} piece)
            string(FIND "${piece}" "\n" cut REVERSE)
            math(EXPR cut "${cut} + 1")
            if(cut EQUAL 0)
                message(FATAL_ERROR "${path} has a line of more than ${EMBED_TEXT_PIECE} bytes")
            endif()
        endif()
        string(SUBSTRING "${text}" 0 ${cut} piece)
        string(APPEND literal "\n    R\"embedded(${piece})embedded\"")
        string(SUBSTRING "${text}" ${cut} -1 text)
        if(text STREQUAL "")
            break()
        endif()
    endwhile()
    set(${result} "${literal}" PARENT_SCOPE)
endfunction()
