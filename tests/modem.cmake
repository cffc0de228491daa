# The ports to a modem, without one.
stk_gtest(NAME TestModem SOURCES TestModem.cpp LIBS ModemServiceObjects)

# The ports at the modem of src/VirtualModem.
add_executable(ModemEndToEnd ModemEndToEnd.cpp)
target_link_libraries(ModemEndToEnd PRIVATE ReaderTools ModemServiceObjects GTest::gtest_main)
target_compile_definitions(ModemEndToEnd PRIVATE VIRTUAL_MODEM="$<TARGET_FILE:VirtualModem>")
set_target_properties(ModemEndToEnd PROPERTIES AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(ModemEndToEnd VirtualModem)
add_test(NAME ModemEndToEnd COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/apart
  ${CMAKE_CURRENT_SOURCE_DIR}/beside 16 $<TARGET_FILE:ModemEndToEnd>)
set_tests_properties(ModemEndToEnd PROPERTIES TIMEOUT 600 COST 120 ENVIRONMENT "${STK_TEST_ENVIRONMENT}")

add_test(NAME ModemProxy COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/with-proxy ${CMAKE_CURRENT_SOURCE_DIR}/beside 3
  $<TARGET_FILE:ModemEndToEnd> "--gtest_filter=*PersonReads/1:*Pin/1:*PersonOnly/1")
set_tests_properties(ModemProxy PROPERTIES TIMEOUT 300 SKIP_RETURN_CODE 77 ENVIRONMENT "${STK_TEST_ENVIRONMENT}")

# The conformance cards through the windows of the host: the same menus, and the same terminal responses byte for
# byte, as in a reader.
foreach(card commands menus pin refresh session sim texts)
  foreach(way at mbim)
    # AT does not tell the last try of a PIN, which pin.json is about.  An MBIM modem makes calls and sends messages by
    # itself and waits for nobody, where commands.json and session.json want a person's answer, and the terminal's.
    if("${way}-${card}" MATCHES "^(at-pin|mbim-commands|mbim-session)$")
      continue()
    endif()
    add_test(NAME Modem-${way}-${card} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/apart
      ${CMAKE_CURRENT_SOURCE_DIR}/play ${STK_BIN_DIR} ${PROJECT_SOURCE_DIR}/cards/conformance/${card}.json ${way})
    set_tests_properties(Modem-${way}-${card} PROPERTIES ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300)
  endforeach()
endforeach()

stk_random_test(NAME ModemFuzz SECONDS 5 SOURCES ModemFuzz.cpp LIBS ModemServiceObjects)
set_target_properties(ModemFuzz PROPERTIES AUTOMOC OFF)
