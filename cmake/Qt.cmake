# The one place that knows which Qt is used: targets link to Stk::Gui (core, gui and widgets) and to
# Stk::Sound, which under Qt 4 is a part of the former.
add_library(stk_qtgui INTERFACE)
add_library(Stk::Gui ALIAS stk_qtgui)
add_library(stk_qtsound INTERFACE)
add_library(Stk::Sound ALIAS stk_qtsound)
target_link_libraries(stk_qtsound INTERFACE stk_qtgui)

if(STK_QT_MAJOR EQUAL 4)
  find_package(Qt4 4.8 REQUIRED QtCore QtGui)
  target_link_libraries(stk_qtgui INTERFACE Qt4::QtGui Qt4::QtCore)
elseif(STK_QT_MAJOR EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Multimedia)
  target_link_libraries(stk_qtgui INTERFACE Qt5::Widgets Qt5::Gui Qt5::Core)
  target_link_libraries(stk_qtsound INTERFACE Qt5::Multimedia)
else()
  message(FATAL_ERROR "STK_QT_MAJOR is 4 or 5, not ${STK_QT_MAJOR}")
endif()
