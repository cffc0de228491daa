# Where things go.  The installed tree is the build folder's, below one folder of the library folder; what
# people look for elsewhere is there, too: the program's name among the programs, and what is the same on
# every processor in the data folder, with links that hold wherever the tree is moved.
set(STK_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/connection-manager)
set(STK_INSTALL_BIN_DIR ${STK_INSTALL_DIR}/bin)
set(STK_INSTALL_LIB_DIR ${STK_INSTALL_DIR}/lib)
set(STK_INSTALL_PLUGIN_DIR ${STK_INSTALL_DIR}/plugins/STKPlugin)
set(STK_INSTALL_DATA_DIR ${CMAKE_INSTALL_DATADIR}/connection-manager)
set(STK_INSTALL_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/STKPlugin)
set(STK_INSTALL_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/connection-manager)

# Two components: what runs, and what is needed to write a host (Development).
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Runtime)
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# stk_install_link(LINK TARGET [COMPONENT name]): both paths relative to the prefix.
function(stk_install_link link target)
  get_filename_component(folder ${link} DIRECTORY)
  get_filename_component(name ${link} NAME)
  file(RELATIVE_PATH path /${folder} /${target})
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/links)
  file(CREATE_LINK ${path} ${CMAKE_BINARY_DIR}/links/${name} SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/links/${name} DESTINATION ${folder} ${ARGN})
endfunction()
