# What needs presses in other programs, which the tests make up.
quillmont_macos_tests(gnustep_desktop_tests DISPLAY
  FILES
    ${CMAKE_CURRENT_LIST_DIR}/GlobalMouseMonitor_test.mm
    ${CMAKE_CURRENT_LIST_DIR}/SwallowGuard_test.mm
  LIBRARIES quillmont_macos_desktop)

# The whole program has the main thread; its tests run beside it. Each scenario is a program and a
# screen of its own.
add_executable(gnustep_program_tests
  ${CMAKE_CURRENT_LIST_DIR}/PlayedTools.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RunningProgram.mm
  ${CMAKE_CURRENT_LIST_DIR}/program_main.mm
  ${CMAKE_CURRENT_LIST_DIR}/program_test.mm
  ${CMAKE_CURRENT_LIST_DIR}/screen.mm)
target_link_libraries(gnustep_program_tests PRIVATE quillmont_program quillmont_macos
                      quillmont_test_programs GTest::gmock GTest::gtest)
set_target_properties(gnustep_program_tests PROPERTIES
  CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/run.sh;--display")
gtest_discover_tests(gnustep_program_tests DISCOVERY_MODE PRE_TEST
  PROPERTIES TIMEOUT 90 SKIP_RETURN_CODE 77)

# The program as it is, whose tools are not there: it starts, and ends when the system asks it to.
add_test(NAME gnustep_main
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/run.sh --display
          timeout --preserve-status --signal=TERM 5 $<TARGET_FILE:Quillmont>)
set_tests_properties(gnustep_main PROPERTIES TIMEOUT 60 SKIP_RETURN_CODE 77)
