# vireon_stage_brushes(<target> <folder>)
# Draws the thirteen brush files into <folder> as part of the build. The program that draws them
# has to run here and now, so a cross build compiles it with the host's own compiler.
function(vireon_stage_brushes target folder)
    set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${target}.stamp")
    if(CMAKE_CROSSCOMPILING)
        find_program(VIREON_HOST_CXX NAMES c++ g++ REQUIRED)
        set(program "${CMAKE_CURRENT_BINARY_DIR}/vireon-brushes")
        file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tools/brushes/*.cpp")
        file(GLOB headers CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tools/brushes/*.h")
        add_custom_command(OUTPUT "${program}"
            COMMAND "${VIREON_HOST_CXX}" -std=c++20 -O2 -ffp-contract=off
                    -I "${CMAKE_SOURCE_DIR}" -I "${CMAKE_SOURCE_DIR}/src" ${sources} -o "${program}"
            DEPENDS ${sources} ${headers} VERBATIM COMMENT "Building the brush program")
        set(command "${program}")
        set(dependency "${program}")
    else()
        set(command vireon-brushes)
        set(dependency vireon-brushes)
    endif()
    add_custom_command(OUTPUT "${stamp}"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
        COMMAND ${command} "${folder}"
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${dependency} VERBATIM COMMENT "Drawing the brushes")
    add_custom_target(${target} ALL DEPENDS "${stamp}")
endfunction()
