# The corpus replay runs the fuzz entries themselves, built here with the
# plain compiler and without libFuzzer.
if(TARGET test_fuzz)
  file(GLOB _fuzz_entries CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/Fuzz*.cpp)
  list(REMOVE_ITEM _fuzz_entries ${PROJECT_SOURCE_DIR}/fuzz/FuzzMain.cpp)
  target_sources(test_fuzz PRIVATE ${_fuzz_entries})
endif()
