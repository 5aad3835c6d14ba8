# OXClass.dll: its four exports, its type library and its version; beside it the files from which other programs are compiled:
# OXClass.idl, OXClass.tlb, OXClass.h.
add_executable(print_type_library library/PrintTypeLibrary.cpp)
target_link_libraries(print_type_library PRIVATE OXClass::OXClass)

find_program(WIDL x86_64-w64-mingw32-widl REQUIRED)
set(idl ${CMAKE_CURRENT_SOURCE_DIR}/library/idl)
set(widl ${WIDL} -m64 --nostdinc -I${idl} -L.)
add_custom_command(OUTPUT OXClass.idl OXClass.tlb OXClass.h
    COMMAND print_type_library OXClass.idl
    COMMAND ${widl} -t -o stdole2.tlb ${idl}/stdole2.idl
    COMMAND ${widl} -t -o OXClass.tlb OXClass.idl
    COMMAND ${widl} -h -o OXClass.h OXClass.idl
    DEPENDS print_type_library ${idl}/oaidl.idl ${idl}/stdole2.idl
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} COMMENT "The type library")
add_custom_target(type_library DEPENDS OXClass.idl OXClass.tlb OXClass.h)

target_sources(OXClassLibrary PRIVATE library/OXClass.def library/OXClass.rc)
set_source_files_properties(library/OXClass.rc PROPERTIES
    OBJECT_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/OXClass.tlb COMPILE_OPTIONS "-I${CMAKE_CURRENT_BINARY_DIR}")
set_target_properties(OXClassLibrary PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
target_link_options(OXClassLibrary PRIVATE LINKER:--exclude-all-symbols)
add_dependencies(OXClassLibrary type_library)

# oxplatform.dll: the C functions for programs, which reach the platform inside of the library file by it.
add_library(oxplatform_functions SHARED platform/Forwarding_windows.cpp platform/oxplatform.def)
set_target_properties(oxplatform_functions PROPERTIES
    OUTPUT_NAME oxplatform PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
target_include_directories(oxplatform_functions PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(oxplatform_functions PRIVATE oxplatform PUBLIC oleaut32 ole32 uuid)

# The package: a folder that is unpacked anywhere, with a script that registers the library.
set(package oxclass-windows-${PROJECT_VERSION})
set(package_file ${PROJECT_BINARY_DIR}/${package}.zip)
set(package_contents
    $<TARGET_FILE:OXClassLibrary> $<TARGET_FILE:oxplatform_functions>
    ${CMAKE_CURRENT_BINARY_DIR}/OXClass.idl ${CMAKE_CURRENT_BINARY_DIR}/OXClass.tlb ${CMAKE_CURRENT_BINARY_DIR}/OXClass.h
    ${PROJECT_SOURCE_DIR}/cmake/windows/install.cmd ${PROJECT_SOURCE_DIR}/cmake/windows/uninstall.cmd
    ${PROJECT_SOURCE_DIR}/docs/windows.md ${PROJECT_SOURCE_DIR}/schema/sqlite.sql ${PROJECT_SOURCE_DIR}/schema/layouts.sql)
add_custom_command(OUTPUT ${package_file}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${package} ${package_file}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${package}
    COMMAND ${CMAKE_COMMAND} -E copy ${package_contents} ${package}
    COMMAND ${CMAKE_STRIP} ${package}/$<TARGET_FILE_NAME:OXClassLibrary>
        ${package}/$<TARGET_FILE_NAME:oxplatform_functions>
    COMMAND ${CMAKE_COMMAND} -E tar cf ${package_file} --format=zip ${package}
    DEPENDS OXClassLibrary oxplatform_functions ${package_contents}
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR} COMMENT "The package for Windows" VERBATIM)
add_custom_target(windows_package ALL DEPENDS ${package_file})

install(TARGETS OXClassLibrary oxplatform_functions RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OXClass.idl ${CMAKE_CURRENT_BINARY_DIR}/OXClass.tlb ${CMAKE_CURRENT_BINARY_DIR}/OXClass.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/oxclass)
