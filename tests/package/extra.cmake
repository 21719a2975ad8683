# The Debian package, end to end: cpack builds it from this tree, it is
# unpacked into a scratch root, and a small host is built against it with
# find_package and run. Plain tree only: a sanitizer tree's library would
# need the sanitizers in the host too.
if(NOT ZAN_SANITIZE AND NOT ZAN_FUZZ AND ZAN_BUILD_TOOLS)
  add_test(NAME package
    COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/package/package_test.sh ${CMAKE_BINARY_DIR}
            ${CMAKE_CURRENT_SOURCE_DIR}/package/host ${CMAKE_BINARY_DIR}/package-test)
  set_tests_properties(package PROPERTIES TIMEOUT 900 LABELS package RUN_SERIAL TRUE)
endif()
