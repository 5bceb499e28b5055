# Adapts the staged documents to Debian policy: names of the changelogs and of the licence, links to them, and
# compression without time stamps for reproducible packages.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/varn)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(COPY_FILE ${CPACK_DEBIAN_CHANGELOG} ${documents}/changelog.Debian)
file(CHMOD ${documents}/changelog.Debian PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(READ ${documents}/README.md readme)
string(REPLACE "](LICENSE)" "](copyright)" readme "${readme}")
string(REPLACE "](CHANGELOG.md)" "](changelog.gz)" readme "${readme}")
file(WRITE ${documents}/README.md "${readme}")
file(GLOB pages ${share}/man/man6/*.6)
execute_process(COMMAND gzip -9n ${documents}/changelog ${documents}/changelog.Debian ${pages} COMMAND_ERROR_IS_FATAL ANY)
