# What an installation puts beside the program for the desktop to show. On a Mac the bundle holds all of it.

if(APPLE)
    return()
endif()

include(GNUInstallDirs)

install(FILES Resources/local.quillon.floating.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES Resources/local.quillon.floating.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES Resources/local.quillon.floating.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
