set(host_definitions
  STK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  STK_BIN_DIR="${STK_BIN_DIR}"
  STK_TRANSLATION_DIR="${STK_TRANSLATION_DIR}"
  STK_TEST_PLUGINS="${CMAKE_BINARY_DIR}/tests/plugins")

stk_qtest(NAME TestHostUi SOURCES TestHostUi.cpp LIBS HostUi)
target_include_directories(TestHostUi PRIVATE ${PROJECT_SOURCE_DIR}/src/HostUi)
target_compile_definitions(TestHostUi PRIVATE ${host_definitions})
add_dependencies(TestHostUi translations)

foreach(test TestWalkthrough TestPinField TestUrlBar TestReaderMenu)
  stk_qtest(NAME ${test} SOURCES ${test}.cpp LIBS ConnectionManagerObjects)
endforeach()
add_dependencies(TestReaderMenu translations)

# The cards' walkthroughs mostly wait: each is a test of its own, so that they can do so side by side.
stk_test_executable(EndToEnd SOURCES EndToEnd.cpp LIBS Stk::Test
  ARGUMENTS complainsInOneLine needsDisplay endsWalkthrough)
foreach(card by-itself demo every-command)
  add_test(NAME EndToEnd-${card} COMMAND EndToEnd plays:${card})
  set_tests_properties(EndToEnd-${card} PROPERTIES
    ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300 COST 90) # long, so it starts early
endforeach()
target_compile_definitions(EndToEnd PRIVATE ${host_definitions})
add_dependencies(EndToEnd ConnectionManager STKPlugin tones)

# Plug-ins that the host must refuse.
foreach(kind NewerQt OlderQt NoVerification NoInterfaces)
  add_library(EndToEnd${kind} MODULE EndToEndOtherPlugin.cpp)
  target_link_libraries(EndToEnd${kind} PRIVATE stk_options Stk::Gui)
  target_compile_definitions(EndToEnd${kind} PRIVATE QT_PLUGIN OTHER_PLUGIN_${kind})
  set_target_properties(EndToEnd${kind} PROPERTIES
    OUTPUT_NAME STKPlugin
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/plugins/${kind}/STKPlugin)
  add_dependencies(EndToEnd EndToEnd${kind})
endforeach()
