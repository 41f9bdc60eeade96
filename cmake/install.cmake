# What is installed: the program where nobody starts it by accident, the book that ships with it,
# a launcher in bin/ that gives each user a folder with both, and the maker of endgame tables.
include(GNUInstallDirs)

set(program_folder "${CMAKE_INSTALL_LIBEXECDIR}/corvane")
set(book_folder "${CMAKE_INSTALL_DATADIR}/corvane/book")

configure_file("${CMAKE_SOURCE_DIR}/packaging/corvane.in"
               "${CMAKE_BINARY_DIR}/packaging/corvane" @ONLY)

install(TARGETS corvane RUNTIME DESTINATION "${program_folder}")
install(PROGRAMS "${CMAKE_BINARY_DIR}/packaging/corvane" DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(TARGETS corvane-tbgen RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${CMAKE_SOURCE_DIR}/data/book/cwhite" "${CMAKE_SOURCE_DIR}/data/book/cblack"
        DESTINATION "${book_folder}")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/data/tests" DESTINATION "${CMAKE_INSTALL_DATADIR}/corvane")
install(FILES README.md LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
