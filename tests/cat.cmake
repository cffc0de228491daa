# The codec of the card application toolkit.
stk_gtest(NAME TestCat SOURCES TestCat.cpp TestCatJson.h LIBS ModemServiceObjects)

# Reads the folder that STK_CONFORMANCE_VECTORS names in CTest's environment; skipped without it.
stk_gtest(NAME TestCatVectors SOURCES TestCatVectors.cpp TestCatJson.h LIBS ModemServiceObjects)
set_tests_properties(TestCatVectors PROPERTIES SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]")

# Random bytes, and commands with faults, for a few seconds.
add_executable(CatFuzz ${PROJECT_SOURCE_DIR}/bench/CatFuzz.cpp)
target_link_libraries(CatFuzz PRIVATE ModemServiceObjects)

set_target_properties(CatFuzz PROPERTIES
  AUTOMOC OFF
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench BUILD_RPATH ${STK_LIB_DIR} INSTALL_RPATH ${STK_LIB_DIR})
add_test(NAME CatFuzz COMMAND CatFuzz 5)
set_tests_properties(CatFuzz PROPERTIES ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300)
