# SPDX-License-Identifier: MIT
# What is installed where, and the Debian package. Three sets of files: `gravlex` goes everywhere,
# `local` only where `cmake --install` puts things, `debian` only into the package.
include(GNUInstallDirs)

set(data_dir ${CMAKE_INSTALL_DATADIR})
set(doc_dir ${CMAKE_INSTALL_DOCDIR})
set(man_dir ${CMAKE_INSTALL_MANDIR}/man1)
set(completions ${CMAKE_BINARY_DIR}/completions)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME gravlex)

install(TARGETS gravlex RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(PROGRAMS src/script/gravlex-script DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${completions}/bash/ DESTINATION ${data_dir}/bash-completion/completions)
install(DIRECTORY ${completions}/fish/ DESTINATION ${data_dir}/fish/vendor_completions.d)
install(FILES examples/README.md examples/ccl4.out examples/benzene.out examples/r_values.out
        DESTINATION ${doc_dir}/examples)
install(FILES README.md SECURITY.md CITATION.cff docs/file-format.md DESTINATION ${doc_dir})

# install_compressed(SOURCE NAME ARGUMENTS...): install SOURCE as NAME.gz. No name and no date go
# into the file, so that two builds give the same bytes.
find_program(GZIP gzip REQUIRED)
function(install_compressed source name)
  set(compressed ${CMAKE_CURRENT_BINARY_DIR}/compressed/${name}.gz)
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/compressed)
  add_custom_command(OUTPUT ${compressed}
    COMMAND ${GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${source} > ${compressed}
    DEPENDS ${source} VERBATIM)
  add_custom_target(compressed_${name} ALL DEPENDS ${compressed})
  install(FILES ${compressed} ${ARGN})
endfunction()

install_compressed(man/gravlex.1 gravlex.1 DESTINATION ${man_dir})
install_compressed(man/gravlex-script.1 gravlex-script.1 DESTINATION ${man_dir})
install_compressed(CHANGELOG.md changelog DESTINATION ${doc_dir})

# Debian's zsh searches this folder below /usr/local, and another one below /usr.
install(DIRECTORY ${completions}/zsh/ DESTINATION ${data_dir}/zsh/site-functions COMPONENT local)
install(FILES LICENSE DESTINATION ${doc_dir} COMPONENT local)

install(DIRECTORY ${completions}/zsh/ DESTINATION ${data_dir}/zsh/vendor-completions
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES cmake/debian/copyright DESTINATION ${doc_dir} COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES cmake/debian/lintian-overrides DESTINATION ${data_dir}/lintian/overrides
        RENAME gravlex COMPONENT debian EXCLUDE_FROM_ALL)
install_compressed(cmake/debian/changelog changelog.Debian DESTINATION ${doc_dir}
                   COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_CMAKE_PROJECTS
    "${CMAKE_BINARY_DIR};gravlex;gravlex;/" "${CMAKE_BINARY_DIR};gravlex;debian;/")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debian/permissions.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_NAME gravlex)
set(CPACK_PACKAGE_VENDOR "the Gravlex developers")
set(CPACK_PACKAGE_CONTACT
    "The Gravlex developers <maintainers@users.noreply.c-seed-91a28205.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "draw the curves of gas electron diffraction tables")
set(CPACK_PACKAGE_DESCRIPTION
"Gravlex reads an intensity table from the text output of a gas electron
diffraction analysis, keeps the kinds of data and the data sets that are asked
for, stacks the curves so that none hides another, and draws them through
gnuplot: into a window that stays, or into a PNG, EPS or SVG image.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS gnuplot)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# dpkg-shlibdeps finds the libraries and the versions of them that are needed.
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
find_program(FILE_PROGRAM file)
if(DPKG_SHLIBDEPS AND FILE_PROGRAM)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libpopt0, libstdc++6")
endif()
include(CPack)
