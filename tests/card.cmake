# Cards in readers, without a reader.
stk_gtest(NAME TestToolkitTerminal SOURCES TestToolkitTerminal.cpp LIBS ModemServiceObjects)
target_compile_definitions(TestToolkitTerminal PRIVATE STK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

# Cards that answer anything.
stk_random_test(NAME CardFuzz SECONDS 5 SOURCES CardFuzz.cpp LIBS ModemServiceObjects)
set_target_properties(CardFuzz PROPERTIES AUTOMOC OFF)
