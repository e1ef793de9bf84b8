# What `cmake --install` and CPack put where. The programs find their files through the working directory, which
# tarn-setup prepares, and tarn-setup finds them relative to itself; so nothing here depends on the prefix.
include(GNUInstallDirs)
set(TARN_SHARE ${CMAKE_INSTALL_DATADIR}/tarn)

# Installing takes what is built, and does not build the tests first.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

install(TARGETS tarn tarn-headless tarn-gs)
file(RELATIVE_PATH share_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR}/tarn)
file(READ scripts/tarn-setup setup_script)
string(REPLACE "$here/../share/tarn" "$here/${share_from_bin}" setup_script "${setup_script}")
file(CONFIGURE OUTPUT generated/tarn-setup CONTENT "${setup_script}" @ONLY)
install(PROGRAMS ${CMAKE_BINARY_DIR}/generated/tarn-setup TYPE BIN)
install(FILES data/font_1.bmp data/font_2.bmp data/tarn.ini DESTINATION ${TARN_SHARE}/data)
install(FILES cmake/tarn.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES cmake/tarn.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES docs/man/tarn.1 docs/man/tarn-headless.1 docs/man/tarn-gs.1 docs/man/tarn-setup.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES README.md CONTRIBUTING.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN man EXCLUDE)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

if(TARN_GUEST)
    # The demo programs, their sources as examples, and what it takes to build more of them.
    install(DIRECTORY ${CMAKE_BINARY_DIR}/guest/ DESTINATION ${TARN_SHARE}/guest
        FILES_MATCHING PATTERN "*.elf" PATTERN CMakeFiles EXCLUDE)
    install(DIRECTORY guest/lib DESTINATION ${TARN_SHARE}/guest)
    # All but the program that has every instruction, also those that the check of a program warns of.
    install(DIRECTORY guest/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        FILES_MATCHING PATTERN "*.[chS]" PATTERN lib EXCLUDE PATTERN check EXCLUDE PATTERN arithmetic EXCLUDE)
    install(TARGETS guest-check DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/tarn)

    install(PROGRAMS ${CMAKE_BINARY_DIR}/tarn-guest-build TYPE BIN)
    install(FILES docs/man/tarn-guest-build.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# The source archive has what the repository has: neither what is built nor what users bring.
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME tarn-${PROJECT_VERSION})
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" source_pattern "${CMAKE_SOURCE_DIR}")
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" binary_pattern "${CMAKE_BINARY_DIR}")
set(CPACK_SOURCE_IGNORE_FILES
    "^${binary_pattern}/" "^${source_pattern}/(build|run|bios|tarn\\.ini|compile_commands\\.json|[.]git|[.]cache)(/|$)"
    "^${source_pattern}/[^/]*\\.bmp$" "\\.new\\.png$" "/__pycache__/")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "the Tarn authors")
set(CPACK_PACKAGE_CONTACT "the Tarn authors <tarn@packages.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "emulator of the PlayStation 2's main-processor side")
set(CPACK_PACKAGE_DESCRIPTION
    "Tarn runs PlayStation 2 programs in ELF format: it interprets their
R5900 code, answers their kernel calls, and draws what they send to the
Graphics Synthesizer, in a window (tarn) or without one, for scripts and
debuggers (tarn-headless). A library and demo programs for the emulated
machine are included.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/TarnDebian.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION otherosfs)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gcc-mipsel-linux-gnu, gdb-multiarch")
include(CPack)
