# The plug-in's own objects against fakes of the services that it calls, in the real frames.
add_library(PluginFakes STATIC
  fakes/FakeHostUi.cpp fakes/FakeHostUi.h
  fakes/FakeModemService.cpp fakes/FakeModemService.h
  fakes/PluginTest.cpp fakes/PluginTest.h
  ${PROJECT_SOURCE_DIR}/include/platform/ClipSound.h)
target_compile_definitions(PluginFakes PUBLIC HOSTUI_LIBRARY)
target_include_directories(PluginFakes PUBLIC fakes)
target_link_libraries(PluginFakes PUBLIC STKPluginObjects HostUiWindows Stk::Test)

foreach(class STKLogic STKThread STKDialog STKInputDlg STKPlugin)
  stk_qtest(NAME Test${class} SOURCES Test${class}.cpp LIBS PluginFakes)
endforeach()

# The proactive commands, presented by STKDialog and STKInputDlg together.
stk_qtest(NAME TestCommands SOURCES TestCommands.cpp LIBS PluginFakes)

# Once more where a locale has digits of its own: what the plug-in writes and sends has none of them.
string(REPLACE "LC_ALL=C.UTF-8" "LC_ALL=ar_EG.UTF-8" arabic_environment "${STK_TEST_ENVIRONMENT}")
foreach(test TestSTKLogic TestSTKThread TestSTKDialog TestSTKInputDlg TestSTKPlugin TestCommands)
  add_test(NAME ${test}Arabic COMMAND ${test})
  set_tests_properties(${test}Arabic PROPERTIES ENVIRONMENT "${arabic_environment}" TIMEOUT 300)
endforeach()

# What the library exports, and that it loads by its entry points alone.
stk_qtest(NAME TestExports SOURCES TestExports.cpp LIBS)
target_compile_definitions(TestExports PRIVATE PLUGIN_FILE="$<TARGET_FILE:STKPlugin>" NM="${CMAKE_NM}")
add_dependencies(TestExports STKPlugin)

# The records' header proves itself; so it has only to be compiled, as C and as C++, in both widths,
# and once: it holds no code that a sanitizer could watch.
if(NOT STK_SANITIZE)
  set(CMAKE_REQUIRED_FLAGS -m32)
  check_cxx_compiler_flag(-m32 STK_HAS_M32)
  unset(CMAKE_REQUIRED_FLAGS)
  foreach(width 64 32)
    if(width EQUAL 64 OR STK_HAS_M32)
      add_library(ModemServiceHeader${width} OBJECT data/header_c.c data/header_cpp.cpp)
      target_link_libraries(ModemServiceHeader${width} PRIVATE stk_options)
      target_compile_options(ModemServiceHeader${width} PRIVATE -pedantic $<$<EQUAL:${width},32>:-m32>)
      set_target_properties(ModemServiceHeader${width} PROPERTIES AUTOMOC OFF)
    endif()
  endforeach()
endif()

# Random commands and random users against the plug-in.
stk_random_test(NAME Soak SECONDS 20 SOURCES Soak.cpp fakes/FakeModemService.cpp LIBS STKPluginObjects HostUi Stk::Test)
target_include_directories(Soak PRIVATE fakes ${PROJECT_SOURCE_DIR}/src/HostUi)
