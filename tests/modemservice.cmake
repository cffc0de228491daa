# The tests of src/ModemService.  They link the library's objects, because they look behind the C
# functions.
stk_gtest(NAME TestText SOURCES TestText.cpp LIBS ModemServiceObjects)
stk_gtest(NAME TestScenarioReader SOURCES TestScenarioReader.cpp LIBS ModemServiceObjects)
stk_gtest(NAME TestSessionParts SOURCES TestSessionParts.cpp LIBS ModemServiceObjects)
stk_gtest(NAME TestSession SOURCES TestSession.cpp LIBS ModemServiceObjects)
target_compile_definitions(TestScenarioReader PRIVATE STK_CARDS_DIR="${PROJECT_SOURCE_DIR}/cards")
