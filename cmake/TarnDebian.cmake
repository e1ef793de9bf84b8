# What Debian's policy asks of a package beyond the installed files. CPack runs this on the staged files.
if(NOT CPACK_GENERATOR STREQUAL DEB)
    return()
endif()
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(doc ${share}/doc/tarn)

# Manuals and change logs are compressed, without names and times.
file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # or that of SOURCE_DATE_EPOCH
file(WRITE ${doc}/changelog.Debian
"tarn (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * What is new is in changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
file(GLOB texts ${doc}/changelog* ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9 --no-name --force ${texts} COMMAND_ERROR_IS_FATAL ANY)

# The guest programs are for another machine on purpose: it has no shared libraries, and debuggers want the symbols.
# The package is in no archive that has bugs to close.
file(WRITE ${share}/lintian/overrides/tarn
"tarn: initial-upload-closes-no-bugs
tarn: arch-dependent-file-in-usr-share [usr/share/tarn/guest/*]
tarn: binary-from-other-architecture [usr/share/tarn/guest/*]
tarn: executable-not-elf-or-script [usr/share/tarn/guest/*]
tarn: statically-linked-binary [usr/share/tarn/guest/*]
tarn: unstripped-binary-or-object [usr/share/tarn/guest/*]
")
