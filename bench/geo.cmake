# PROJ is the comparison in bench_geo; the library itself does not link it.
find_package(PROJ CONFIG REQUIRED)
target_link_libraries(bench_geo PRIVATE PROJ::proj)
