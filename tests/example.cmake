# The example host as it is, with a user that Qt loads into its process.
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/MinimalHostUser.json "{\"Keys\": [\"MinimalHostUser\"]}\n")
add_library(MinimalHostUser MODULE MinimalHostUser.cpp)
target_link_libraries(MinimalHostUser PRIVATE stk_options Stk::Test)
target_include_directories(MinimalHostUser PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
set_target_properties(MinimalHostUser PROPERTIES
  LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/plugins/generic)
add_test(NAME MinimalHost COMMAND minimal-host)
set_tests_properties(MinimalHost PROPERTIES TIMEOUT 120
  ENVIRONMENT "${STK_TEST_ENVIRONMENT};QT_QPA_GENERIC_PLUGINS=MinimalHostUser;QT_PLUGIN_PATH=${CMAKE_BINARY_DIR}/tests/plugins")
