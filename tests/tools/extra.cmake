# End-to-end tests of the zanrec tool: synthesise, list, draw, damage.
find_package(Python3 COMPONENTS Interpreter REQUIRED)
if(TARGET zanrec)
  add_test(NAME tool_end_to_end
           COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/e2e.py $<TARGET_FILE:zanrec>)
  set_tests_properties(tool_end_to_end PROPERTIES TIMEOUT 600)
endif()
