# The Debian packages, where they can be made.
if(TARGET package_documents)
  add_test(NAME Package COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/package ${CMAKE_BINARY_DIR})
  set_tests_properties(Package PROPERTIES
    ENVIRONMENT "${STK_TEST_ENVIRONMENT}" TIMEOUT 300 COST 80) # long, so it starts early
endif()
