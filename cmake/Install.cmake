# SPDX-License-Identifier: MIT
# What is installed where.
include(GNUInstallDirs)
set(data_dir ${CMAKE_INSTALL_DATADIR})
set(doc_dir ${CMAKE_INSTALL_DOCDIR})
set(completions ${CMAKE_BINARY_DIR}/completions)

list(TRANSFORM PROGRAMS PREPEND gravlex- OUTPUT_VARIABLE installed)
install(TARGETS gravlex ${installed} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# In their places to each other, so that the links hold.
install(FILES CHANGELOG.md CITATION.cff LICENSE README.md SECURITY.md DESTINATION ${doc_dir})
install(DIRECTORY docs examples DESTINATION ${doc_dir})

# Debian's zsh searches this folder below /usr/local, and another one below /usr.
install(DIRECTORY ${completions}/bash/ DESTINATION ${data_dir}/bash-completion/completions)
install(DIRECTORY ${completions}/fish/ DESTINATION ${data_dir}/fish/vendor_completions.d)
install(DIRECTORY ${completions}/zsh/ DESTINATION ${data_dir}/zsh/site-functions)
