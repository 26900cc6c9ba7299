# Run by CPack on the tree that is about to become a Debian package: brings its documents into the form that Debian
# wants. Other packages and the source are left as they are.
cmake_minimum_required(VERSION 3.19)

if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${tree}/doc/${CPACK_PACKAGE_NAME})

# The licence, in the form that machines read.
file(READ ${documents}/LICENSE licence)
if(NOT licence MATCHES "^MIT License\n\nCopyright \\(c\\) ([^\n]+)\n\n(.*[^\n])\n+$")
  message(FATAL_ERROR "LICENSE has changed its form")
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

# The changes of the program, and those of the package.
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC) # or SOURCE_DATE_EPOCH
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(WRITE ${documents}/changelog.Debian "\
${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Package of version ${CPACK_PACKAGE_VERSION}; its changes are in changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")

file(GLOB manual ${tree}/man/man1/*.1)
execute_process(
  COMMAND gzip --best --no-name --force ${documents}/changelog ${documents}/changelog.Debian ${manual}
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE files ${documents}/* ${tree}/man/*)
file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# The same package from the same commit, whenever it is made.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
