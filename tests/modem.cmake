# The modem of src/VirtualModem: what a terminal finds at its port.
stk_gtest(NAME TestVirtualModem SOURCES TestVirtualModem.cpp LIBS StrictJson)
target_compile_definitions(TestVirtualModem PRIVATE
  CARDS="${PROJECT_SOURCE_DIR}/cards/conformance" VIRTUAL_MODEM="$<TARGET_FILE:VirtualModem>")
add_dependencies(TestVirtualModem VirtualModem)
