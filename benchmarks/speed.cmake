# The table of ./bench, for both systems; needs nothing but the project.
add_executable(vireon-speed
    bench_host.cpp
    speed_clock.cpp
    speed_frames.cpp
    speed_main.cpp
    speed_stages.cpp
    speed_table.cpp
    $<$<NOT:$<BOOL:${WIN32}>>:speed_yardstick.cpp>)
target_link_libraries(vireon-speed PRIVATE
    vireon_effect vireon_headless vireon_scenes vireon_warnings vireon_exact_math)
target_include_directories(vireon-speed PRIVATE "${CMAKE_SOURCE_DIR}")
target_compile_definitions(vireon-speed PRIVATE
    VIREON_BENCH_PLUGIN="$<TARGET_FILE:VireonGlow>"
    VIREON_BENCH_WORK="${CMAKE_CURRENT_BINARY_DIR}/levels")
add_dependencies(vireon-speed VireonGlow)
