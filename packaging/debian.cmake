# Brings the staged documents into the form of Debian's policy, before the package is made of them: both changelogs under
# their names, and what is compressed, compressed without the time, so that equal sources make equal packages.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/varn)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(COPY_FILE ${CPACK_DEBIAN_CHANGELOG} ${documents}/changelog.Debian)
file(CHMOD ${documents}/changelog.Debian PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(GLOB pages ${share}/man/man6/*.6)
execute_process(COMMAND gzip -9n ${documents}/changelog ${documents}/changelog.Debian ${pages} COMMAND_ERROR_IS_FATAL ANY)
