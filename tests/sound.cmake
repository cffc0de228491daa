# The tone files as the build made them, and the sound player on them.
stk_gtest(NAME TestTones SOURCES TestTones.cpp)
stk_qtest(NAME TestClipSound SOURCES TestClipSound.cpp LIBS HostUi)
stk_qtest(NAME SoundEndToEnd SOURCES SoundEndToEnd.cpp LIBS HostUi)
foreach(test TestTones TestClipSound SoundEndToEnd)
  target_compile_definitions(${test} PRIVATE TONES="${STK_PLUGIN_DIR}")
  add_dependencies(${test} tones)
endforeach()
# Where no sound server can be started the whole test is left out, and is not counted as passed.
set_tests_properties(SoundEndToEnd PROPERTIES SKIP_REGULAR_EXPRESSION "SKIP   : ")
# A sound server that is kept waiting ends its clients.
set_tests_properties(SoundEndToEnd PROPERTIES RUN_SERIAL TRUE)
