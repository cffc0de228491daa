# Cards of src/VirtualCard in readers of a smart-card daemon that tests/reader/with-pcscd starts for
# each test.  Where no such daemon can be started a test is skipped.
set(with_pcscd ${CMAKE_CURRENT_SOURCE_DIR}/reader/with-pcscd)

# How a program puts cards into those readers, for the tests and for bench/ReaderBench.
add_library(ReaderTools OBJECT ReaderTools.cpp)
target_link_libraries(ReaderTools PUBLIC stk_options ModemServiceObjects)
target_include_directories(ReaderTools PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(ReaderTools
  PUBLIC STK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  PRIVATE VIRTUAL_CARD="$<TARGET_FILE:VirtualCard>")
set_target_properties(ReaderTools PROPERTIES AUTOMOC OFF)
add_dependencies(ReaderTools VirtualCard)

function(stk_reader_test name)
  add_test(NAME ${name} COMMAND ${with_pcscd} ${ARGN})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300 SKIP_RETURN_CODE 77)
endfunction()

function(stk_reader_executable name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ReaderTools ModemServiceObjects)
  set_target_properties(${name} PROPERTIES AUTOMOC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
endfunction()

# Every card that has a walkthrough, through the windows of the host.
file(GLOB walkthroughs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cards/conformance/*.walkthrough.json)
foreach(walkthrough ${walkthroughs})
  get_filename_component(card ${walkthrough} NAME_WE)
  stk_reader_test(Reader-${card} ${CMAKE_CURRENT_SOURCE_DIR}/play
    ${STK_BIN_DIR} ${PROJECT_SOURCE_DIR}/cards/conformance/${card}.json pcsc)
endforeach()

stk_reader_executable(ReaderEndToEnd ReaderEndToEnd.cpp)
target_link_libraries(ReaderEndToEnd PRIVATE GTest::gtest_main)
# Nearly all of its time is waiting: its cases run beside each other, each part with its own daemon.
set(parts 6)
foreach(part RANGE 1 ${parts})
  math(EXPR index "${part} - 1")
  stk_reader_test(ReaderEndToEnd-${part} $<TARGET_FILE:ReaderEndToEnd>)
  set_property(TEST ReaderEndToEnd-${part} APPEND PROPERTY ENVIRONMENT
    GTEST_TOTAL_SHARDS=${parts} GTEST_SHARD_INDEX=${index})
  set_tests_properties(ReaderEndToEnd-${part} PROPERTIES COST 40) # the longest start first
endforeach()

stk_reader_executable(ReaderSoak ReaderSoak.cpp)
stk_reader_test(ReaderSoak $<TARGET_FILE:ReaderSoak> 10)
set_tests_properties(ReaderSoak PROPERTIES RESOURCE_LOCK processor COST 10)
