# Run by cpack when a package is made: an archive's files stand in the order of their names and belong to root, whatever
# order the disk gives them in and whoever has built it.
get_filename_component(folder ${CPACK_TEMPORARY_DIRECTORY} DIRECTORY)
get_filename_component(name ${CPACK_TEMPORARY_DIRECTORY} NAME)
foreach(package ${CPACK_PACKAGE_FILES})
    if(package MATCHES "\\.tar\\.gz$")
        execute_process(COMMAND tar --sort=name --owner=0 --group=0 --numeric-owner --format=gnu -C ${folder} -c ${name}
            COMMAND gzip -9n OUTPUT_FILE ${package} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
