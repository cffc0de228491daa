# The codec of the card application toolkit.
stk_gtest(NAME TestCat SOURCES TestCat.cpp TestCatJson.h LIBS ModemServiceObjects)

# Reads the folder that STK_CONFORMANCE_VECTORS names in CTest's environment; skipped without it.
stk_gtest(NAME TestCatVectors SOURCES TestCatVectors.cpp TestCatJson.h LIBS ModemServiceObjects)
set_tests_properties(TestCatVectors PROPERTIES SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]")

# Random bytes, and commands with faults.
stk_random_test(NAME CatFuzz SECONDS 5 SOURCES CatFuzz.cpp LIBS ModemServiceObjects)
set_target_properties(CatFuzz PROPERTIES AUTOMOC OFF)
