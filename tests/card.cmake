# Cards in readers, without a reader.
stk_gtest(NAME TestToolkitCard SOURCES TestToolkitCard.cpp LIBS ModemServiceObjects)

# Cards that answer anything, for a few seconds.
add_executable(CardFuzz ${PROJECT_SOURCE_DIR}/bench/CardFuzz.cpp)
target_link_libraries(CardFuzz PRIVATE ModemServiceObjects)
set_target_properties(CardFuzz PROPERTIES
  AUTOMOC OFF
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench BUILD_RPATH ${STK_LIB_DIR} INSTALL_RPATH ${STK_LIB_DIR})
add_test(NAME CardFuzz COMMAND CardFuzz 5)
set_tests_properties(CardFuzz PROPERTIES ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300)
