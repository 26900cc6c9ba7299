# Converts the documents of a Debian package to the format that Debian requires. CPack runs this script before it builds
# a package of any kind from the installed tree; does nothing for other kinds.
cmake_minimum_required(VERSION 3.19)

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${tree}/doc/${CPACK_PACKAGE_NAME})

# The licence in machine-readable format.
file(READ ${documents}/LICENSE licence)
if(NOT licence MATCHES "^MIT License\n\nCopyright \\(c\\) ([^\n]+)\n\n(.*[^\n])\n+$")
  message(FATAL_ERROR "LICENSE: unexpected format")
endif()
set(holder "${CMAKE_MATCH_1}")
string(REGEX REPLACE "\n\n" "\n.\n" licence "${CMAKE_MATCH_2}")
string(REPLACE "\n" "\n " licence "${licence}")
file(WRITE ${documents}/copyright "\
Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Source: ${CPACK_PACKAGE_HOMEPAGE_URL}

Files: *
Copyright: ${holder}
License: Expat
 ${licence}
")
file(REMOVE ${documents}/LICENSE)

# The changelogs of the program and the package.
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC) # or SOURCE_DATE_EPOCH
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(WRITE ${documents}/changelog.Debian "\
${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Package version ${CPACK_PACKAGE_VERSION}; see changelog.gz for the changes.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")

file(GLOB manual ${tree}/man/man1/*.1)
execute_process(
  COMMAND gzip --best --no-name --force ${documents}/changelog ${documents}/changelog.Debian ${manual}
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE files ${documents}/* ${tree}/man/*)
file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# Reproducible builds: the modification times must not depend on the time of the build.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
