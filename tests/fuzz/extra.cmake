# The corpus replay runs the fuzz entries themselves, built here with the
# plain compiler and without libFuzzer.
if(TARGET test_fuzz)
  file(GLOB _fuzz_entries CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/Fuzz*.cpp)
  list(REMOVE_ITEM _fuzz_entries ${PROJECT_SOURCE_DIR}/fuzz/FuzzMain.cpp)
  file(GLOB _zanrec_parts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/zanrec/*.cpp)
  list(REMOVE_ITEM _zanrec_parts ${PROJECT_SOURCE_DIR}/tools/zanrec/main.cpp
       ${PROJECT_SOURCE_DIR}/tools/zanrec/GeoCommand.cpp)
  target_sources(test_fuzz PRIVATE ${_fuzz_entries} ${_zanrec_parts})
  target_link_libraries(test_fuzz PRIVATE ZLIB::ZLIB PkgConfig::OSMESA)
endif()

# Some thousand damaged copies of a recording through zanrec info and render.
# Plain tree only: a sanitizer tree would take too long for the CI run.
if(TARGET zanrec AND NOT ZAN_SANITIZE)
  find_package(Python3 COMPONENTS Interpreter REQUIRED)
  add_test(NAME damaged_recordings
           COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/damaged_recordings.py $<TARGET_FILE:zanrec>)
  set_tests_properties(damaged_recordings PROPERTIES TIMEOUT 900 LABELS damage)
endif()
