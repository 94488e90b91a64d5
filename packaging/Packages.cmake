# `cpack` makes one relocatable archive of everything and a Debian package of each component.
set(CPACK_GENERATOR "TGZ;DEB")
set(CPACK_PACKAGE_NAME quillstar)
set(CPACK_PACKAGE_VENDOR "QuillStar Software Ltd.")
set(CPACK_PACKAGE_CONTACT "QuillStar Client developers <developers@quillstar.example>")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL client farm development)
# The first line of each description below is the package's synopsis. A summary for all would precede it.

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_CLIENT_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_FARM_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endif()

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME quillstar)
set(CPACK_COMPONENT_CLIENT_DESCRIPTION "Desktop client of a render farm
Submits scenes, watches jobs, downloads finished frames and shows the balance.
Contains the main window as a plugin for the CTK Plugin Framework.")
# The skins' icons are SVG files, which the linked libraries do not reveal.
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS "libqt5svg5")
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS
    "quillstar-farm (= ${PROJECT_VERSION}), libqt5multimedia5-plugins, qttranslations5-l10n, fonts-inter, fonts-wqy-microhei")
set(CPACK_DEBIAN_CLIENT_PACKAGE_SUGGESTS "blender")

set(CPACK_DEBIAN_FARM_PACKAGE_NAME quillstar-farm)
set(CPACK_COMPONENT_FARM_DESCRIPTION "Small render farm for the QuillStar client
Serves accounts and jobs over HTTP and renders scenes with POV-Ray on this
machine, and with Blender where it is installed, or on a Slurm cluster. The
client starts it when no other farm is configured; a service for a studio's
farm is included, but not enabled.")
set(CPACK_DEBIAN_FARM_PACKAGE_DEPENDS "povray, adduser")
set(CPACK_DEBIAN_FARM_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_LIST_DIR}/debian/postinst ${CMAKE_CURRENT_LIST_DIR}/debian/prerm ${CMAKE_CURRENT_LIST_DIR}/debian/postrm)
set(CPACK_DEBIAN_FARM_PACKAGE_RECOMMENDS "povray-includes")
set(CPACK_DEBIAN_FARM_PACKAGE_SUGGESTS "blender")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME quillstar-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Development files of the QuillStar client
The interfaces between the client's main window and its host, a CMake package,
forms, skins and an example, for building a host of one's own.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "quillstar (= ${PROJECT_VERSION}), cmake, qtbase5-dev")

include(CPack)
