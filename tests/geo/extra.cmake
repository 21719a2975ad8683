# PROJ serves the geodesy tests as an independent oracle; the library itself
# does not link it.
if(TARGET test_geo)
  find_package(PROJ CONFIG REQUIRED)
  target_link_libraries(test_geo PRIVATE PROJ::proj)
endif()

# The command line converts like the library: the published worked point.
if(TARGET zanrec)
  add_test(NAME geo_tool
    COMMAND sh -c "printf '%s\\n' '-1.2 57.1' '# kept' | \"$<TARGET_FILE:zanrec>\" geo --db \"${PROJECT_SOURCE_DIR}/data/GeoDB.csv\" --to UTM_30N")
  set_tests_properties(geo_tool PROPERTIES PASS_REGULAR_EXPRESSION "^609045\\.374 6329955\\.901\n# kept\n$")
  add_test(NAME geo_tool_unknown_name
    COMMAND "$<TARGET_FILE:zanrec>" geo --db "${PROJECT_SOURCE_DIR}/data/GeoDB.csv" --to UTM_99N)
  set_tests_properties(geo_tool_unknown_name PROPERTIES WILL_FAIL TRUE)
endif()
