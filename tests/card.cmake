# Cards in readers, without a reader.
stk_gtest(NAME TestToolkitCard SOURCES TestToolkitCard.cpp LIBS ModemServiceObjects)
