# Gives the installed files the form that Debian demands of a package. CPack runs this before packing.
set(FOLDER ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(DOCUMENTS ${FOLDER}/doc/${CPACK_PACKAGE_NAME})

file(MAKE_DIRECTORY ${FOLDER}/zsh/vendor-completions)
file(RENAME ${FOLDER}/zsh/site-functions/_brimletctl ${FOLDER}/zsh/vendor-completions/_brimletctl)
file(REMOVE_RECURSE ${FOLDER}/zsh/site-functions)

file(READ ${DOCUMENTS}/LICENSE.md LICENCE)
file(WRITE ${DOCUMENTS}/copyright "Copyright 2026 ${CPACK_PACKAGE_VENDOR}\n\n${LICENCE}")
file(REMOVE ${DOCUMENTS}/LICENSE.md)

# A static program starts in half the time, and one package fits every release of Debian and Ubuntu.
file(WRITE ${FOLDER}/lintian/overrides/${CPACK_PACKAGE_NAME}
     "${CPACK_PACKAGE_NAME}: embedded-library ncurses *\n"
     "${CPACK_PACKAGE_NAME}: statically-linked-binary *\n")

string(TIMESTAMP DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${DOCUMENTS}/changelog
"${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * Release ${CPACK_PACKAGE_VERSION}; see CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  ${DATE}
")
execute_process(COMMAND gzip -9n ${DOCUMENTS}/changelog ${FOLDER}/man/man1/brimletctl.1
                COMMAND_ERROR_IS_FATAL ANY)
