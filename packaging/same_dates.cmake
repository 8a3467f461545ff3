# Run by cpack when the files of a package lie ready: all bear the date of the commit, so that two builds of it give the
# same bytes.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch -h -d "@$ENV{SOURCE_DATE_EPOCH}" {} +
        COMMAND_ERROR_IS_FATAL ANY)
endif()
