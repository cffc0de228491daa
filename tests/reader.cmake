# Cards of src/VirtualCard in readers of a smart-card daemon that tests/reader/with-pcscd starts for
# each test.  Where no such daemon can be started a test is skipped.
set(with_pcscd ${CMAKE_CURRENT_SOURCE_DIR}/reader/with-pcscd)
set(reader_tools ${PROJECT_SOURCE_DIR}/bench/ReaderTools.cpp)

function(stk_reader_test name)
  add_test(NAME ${name} COMMAND ${with_pcscd} ${ARGN})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300 SKIP_RETURN_CODE 77)
endfunction()

function(stk_reader_executable name)
  add_executable(${name} ${ARGN} ${reader_tools})
  target_link_libraries(${name} PRIVATE stk_options ModemServiceObjects)
  target_compile_definitions(${name} PRIVATE
    STK_SOURCE_DIR="${PROJECT_SOURCE_DIR}" VIRTUAL_CARD="$<TARGET_FILE:VirtualCard>")
  set_target_properties(${name} PROPERTIES
    AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_dependencies(${name} VirtualCard)
endfunction()

# Every card that has a walkthrough, through the windows of the host.
file(GLOB walkthroughs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cards/conformance/*.walkthrough.json)
foreach(walkthrough ${walkthroughs})
  get_filename_component(card ${walkthrough} NAME_WE)
  stk_reader_test(Reader-${card} ${CMAKE_CURRENT_SOURCE_DIR}/reader/play
    ${STK_BIN_DIR} ${PROJECT_SOURCE_DIR}/cards/conformance/${card}.json)
endforeach()

stk_reader_executable(ReaderEndToEnd ReaderEndToEnd.cpp)
target_link_libraries(ReaderEndToEnd PRIVATE GTest::gtest_main)
stk_reader_test(ReaderEndToEnd $<TARGET_FILE:ReaderEndToEnd>)

stk_reader_executable(ReaderSoak ${PROJECT_SOURCE_DIR}/bench/ReaderSoak.cpp)
set_target_properties(ReaderSoak PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
stk_reader_test(ReaderSoak $<TARGET_FILE:ReaderSoak> 10)
