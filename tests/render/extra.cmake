# Call-sequence tests of the drawing code. The gl* functions of glrec/ take
# the place of the system's in this one program (an executable's own
# definitions win over those that libzandata takes from Mesa, and a static
# libzandata links against them directly), and record every call.
file(GLOB _glrec_src CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/glrec/*.cpp)
file(GLOB _calls_src CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/calls/*.cpp)
if(_calls_src)
  add_executable(test_render_calls ${_glrec_src} ${_calls_src})
  target_include_directories(test_render_calls PRIVATE ${CMAKE_CURRENT_LIST_DIR}/glrec)
  target_link_libraries(test_render_calls PRIVATE ZanData::zandata GTest::gtest GTest::gtest_main ${CMAKE_DL_LIBS})
  target_compile_options(test_render_calls PRIVATE -Wall -Wextra)
  # Export the recorder's symbols so the shared library binds to them.
  set_target_properties(test_render_calls PROPERTIES ENABLE_EXPORTS ON)
  get_target_property(_zan_type zandata TYPE)
  if(_zan_type STREQUAL "SHARED_LIBRARY")
    target_compile_definitions(test_render_calls PRIVATE ZAN_SHARED_LIB="$<TARGET_FILE:zandata>")
  endif()
  target_compile_definitions(test_render_calls PRIVATE ZAN_TEST_DATA="${CMAKE_CURRENT_LIST_DIR}/../data"
    ZAN_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  add_test(NAME render_calls COMMAND test_render_calls)
  set_tests_properties(render_calls PROPERTIES TIMEOUT 600)
endif()

# The pixel tests draw with OpenGL themselves and read their PNG files back.
if(TARGET test_render)
  target_link_libraries(test_render PRIVATE PNG::PNG PkgConfig::OSMESA)
endif()
