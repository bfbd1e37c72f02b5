# The program as it is installed: a folder with Contents/ in it, the same in the build tree.
set(QUILLMONT_BUNDLE "${CMAKE_BINARY_DIR}/Quillmont")

# A release is hardened, and the same bytes wherever it is built. Some compilers fortify by themselves.
set(hardened -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
target_compile_options(quillmont_options INTERFACE "$<$<CONFIG:Release>:${hardened}>")
target_link_options(quillmont_options INTERFACE "$<$<CONFIG:Release>:LINKER:-z,relro,-z,now>")

add_subdirectory(platform/linux)

add_executable(Quillmont app/main.cpp)
target_link_libraries(Quillmont PRIVATE quillmont_program quillmont_linux)
set_target_properties(Quillmont PROPERTIES
  RUNTIME_OUTPUT_DIRECTORY "${QUILLMONT_BUNDLE}/Contents/MacOS")
install(TARGETS Quillmont DESTINATION lib/quillmont/Contents/MacOS)
foreach(resource quillmont.svg uninstall.sh)
  configure_file(packaging/resources/${resource}
                 "${QUILLMONT_BUNDLE}/Contents/Resources/${resource}" COPYONLY)
endforeach()
install(FILES packaging/resources/quillmont.svg DESTINATION lib/quillmont/Contents/Resources)
install(PROGRAMS packaging/resources/uninstall.sh DESTINATION lib/quillmont/Contents/Resources)

# The whole installed tree: the program and its tools.
add_custom_target(quillmont_bundle DEPENDS Quillmont tool_hdiutil tool_launchctl tool_lsof
                  tool_osascript)

include(cmake/LinuxPackage.cmake)

add_subdirectory(demo)
