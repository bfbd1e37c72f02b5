# What is installed around the program for a desktop to know it by, and the Debian package of it all.
# SOURCE_DATE_EPOCH, where it is set, is the time of everything: then the same sources make the same bytes.
string(TIMESTAMP QUILLMONT_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP QUILLMONT_LOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(QUILLMONT_MAINTAINER "Quillmont developers <quillmont@norwaldex.com>")
set(package_folder "${CMAKE_BINARY_DIR}/packaging")
set(package_files)

# quillmont_packed(NAME): NAME.gz of NAME in the package folder.
function(quillmont_packed name)
  add_custom_command(OUTPUT "${package_folder}/${name}.gz"
    COMMAND gzip -9nkf "${package_folder}/${name}" DEPENDS "${package_folder}/${name}" VERBATIM)
endfunction()

# Manual pages.
foreach(page quillmont.1 quillmont.zh_CN.1)
  configure_file(packaging/linux/${page}.in "${package_folder}/${page}" @ONLY)
  quillmont_packed(${page})
  list(APPEND package_files "${package_folder}/${page}.gz")
endforeach()
install(FILES "${package_folder}/quillmont.1.gz" DESTINATION share/man/man1)
install(FILES "${package_folder}/quillmont.zh_CN.1.gz" DESTINATION share/man/zh_CN/man1
        RENAME quillmont.1.gz)

# The change log, in Debian's form.
configure_file(packaging/linux/dates.in "${package_folder}/dates" @ONLY)
add_custom_command(OUTPUT "${package_folder}/changelog"
  COMMAND awk -v "version=${PROJECT_VERSION}" -v "date=${QUILLMONT_LOG_DATE}"
          -v "maintainer=${QUILLMONT_MAINTAINER}" -f "${PROJECT_SOURCE_DIR}/packaging/linux/changelog.awk"
          "${PROJECT_SOURCE_DIR}/CHANGELOG.md" > "${package_folder}/changelog"
  DEPENDS CHANGELOG.md packaging/linux/changelog.awk "${package_folder}/dates" VERBATIM)
quillmont_packed(changelog)
list(APPEND package_files "${package_folder}/changelog.gz")
install(FILES "${package_folder}/changelog.gz" packaging/linux/copyright
        DESTINATION share/doc/quillmont)

# Menu entry, software catalogue, icons.
set(metainfo com.norwaldex.Quillmont.metainfo.xml)
configure_file(packaging/linux/${metainfo}.in "${package_folder}/${metainfo}" @ONLY)
install(FILES "${package_folder}/${metainfo}" DESTINATION share/metainfo)
install(FILES packaging/linux/quillmont.desktop DESTINATION share/applications)
install(FILES packaging/resources/quillmont.svg DESTINATION share/icons/hicolor/scalable/apps)
find_program(RSVG_CONVERT rsvg-convert) # without it there is the vector icon alone
if(RSVG_CONVERT)
  foreach(size 16 22 24 32 48 64 128 256)
    set(icon "${package_folder}/icons/${size}.png")
    add_custom_command(OUTPUT "${icon}"
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${package_folder}/icons"
      COMMAND "${RSVG_CONVERT}" -w ${size} -h ${size} -o "${icon}"
              "${PROJECT_SOURCE_DIR}/packaging/resources/quillmont.svg"
      DEPENDS packaging/resources/quillmont.svg VERBATIM)
    list(APPEND package_files "${icon}")
    install(FILES "${icon}" DESTINATION share/icons/hicolor/${size}x${size}/apps
            RENAME quillmont.png)
  endforeach()
endif()

add_custom_target(quillmont_package_files ALL DEPENDS ${package_files})

# The command. The program finds its folder from where the link leads.
file(CREATE_LINK ../lib/quillmont/Contents/MacOS/Quillmont "${package_folder}/quillmont" SYMBOLIC)
install(FILES "${package_folder}/quillmont" DESTINATION bin)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillmont)
set(CPACK_PACKAGE_CONTACT "${QUILLMONT_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "eject disk images that nobody uses any more")
set(CPACK_PACKAGE_DESCRIPTION "Quillmont watches the disk images that are attached, measures how long each
has been idle, asks which processes still hold files open on it, and detaches
it once it has been idle for a chosen time. It makes sure that the image is
really gone before it says so. A panel in the tray shows the images and holds
the settings.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# Libraries, as the linker sees them; bash is part of every system, the tools are the program's own.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# A font for Han characters; ejecting as an ordinary user; a bus for notifications and trays.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "default-dbus-session-bus | dbus-session-bus, fonts-noto-cjk, polkitd, udisks2")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "notification-daemon, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
