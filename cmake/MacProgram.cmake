# The program as a Mac's application bundle. Upon GNUstep, where it is only tested, it has none.
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)

if(QUILLMONT_GNUSTEP)
  add_subdirectory(tests/gnustep)
endif()
add_subdirectory(platform/macos)

add_executable(Quillmont app/main.cpp)
target_link_libraries(Quillmont PRIVATE quillmont_program quillmont_macos)
if(QUILLMONT_GNUSTEP)
  return()
endif()

set(resources packaging/macos/Quillmont.icns packaging/resources/uninstall.sh)
target_sources(Quillmont PRIVATE ${resources})
set_source_files_properties(${resources} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(Quillmont PROPERTIES
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST "${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in")
install(TARGETS Quillmont BUNDLE DESTINATION .)
