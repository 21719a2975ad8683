# PROJ serves the geodesy tests as an independent oracle; the library itself
# does not link it.
if(TARGET test_geo)
  find_package(PROJ CONFIG REQUIRED)
  target_link_libraries(test_geo PRIVATE PROJ::proj)
endif()
