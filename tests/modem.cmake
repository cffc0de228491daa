# The modem of src/VirtualModem: what a terminal finds at its port.
stk_gtest(NAME TestVirtualModem SOURCES TestVirtualModem.cpp LIBS StrictJson)
target_compile_definitions(TestVirtualModem PRIVATE
  CARDS="${PROJECT_SOURCE_DIR}/cards/conformance" VIRTUAL_MODEM="$<TARGET_FILE:VirtualModem>")
add_dependencies(TestVirtualModem VirtualModem)

# The ports to a modem, without one.
stk_gtest(NAME TestModem SOURCES TestModem.cpp LIBS ModemServiceObjects)

# The conformance cards through the windows of the host: the same menus, and the same terminal responses byte for
# byte, as in a reader.
foreach(card commands menus pin refresh session sim texts)
  foreach(way at mbim)
    add_test(NAME Modem-${way}-${card} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/play
      ${STK_BIN_DIR} ${PROJECT_SOURCE_DIR}/cards/conformance/${card}.json ${way})
    set_tests_properties(Modem-${way}-${card} PROPERTIES ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300)
  endforeach()
endforeach()
