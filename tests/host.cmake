set(host_definitions
  STK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  STK_BIN_DIR="${STK_BIN_DIR}"
  STK_TRANSLATION_DIR="${STK_TRANSLATION_DIR}"
  STK_TEST_PLUGINS="${CMAKE_BINARY_DIR}/tests/plugins")

stk_qtest(NAME TestHostUi SOURCES TestHostUi.cpp LIBS HostUi)
target_include_directories(TestHostUi PRIVATE ${PROJECT_SOURCE_DIR}/src/HostUi)
target_compile_definitions(TestHostUi PRIVATE ${host_definitions})
add_dependencies(TestHostUi translations)

stk_qtest(NAME TestWalkthrough SOURCES TestWalkthrough.cpp LIBS ConnectionManagerObjects)
stk_qtest(NAME TestPinField SOURCES TestPinField.cpp LIBS ConnectionManagerObjects)
stk_qtest(NAME TestUrlBar SOURCES TestUrlBar.cpp LIBS ConnectionManagerObjects)
stk_qtest(NAME TestReaderMenu SOURCES TestReaderMenu.cpp LIBS ConnectionManagerObjects)

stk_qtest(NAME EndToEnd SOURCES EndToEnd.cpp LIBS Qt5::Core)
target_compile_definitions(EndToEnd PRIVATE ${host_definitions})
add_dependencies(EndToEnd ConnectionManager STKPlugin tones)
set_tests_properties(EndToEnd PROPERTIES COST 90) # long, so it starts early

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
