# Which component a package holds, and where: asked by cpack once for each sort of package.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_INSTALL_CMAKE_PROJECTS "${CPACK_NUMALINK_BUILD};numalink;installed;/")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
elseif(NOT CPACK_INSTALLED_DIRECTORIES)  # that is the source archive
    set(CPACK_INSTALL_CMAKE_PROJECTS "${CPACK_NUMALINK_BUILD};numalink;portable;/")
    set(CPACK_PACKAGE_FILE_NAME "numalink-${CPACK_PACKAGE_VERSION}-linux-${CPACK_NUMALINK_PROCESSOR}")
endif()
