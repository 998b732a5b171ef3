# Compiler settings that every target of ours shares.

option(VIREON_WARNINGS_AS_ERRORS "Treat warnings in our own code as errors" ON)
set(VIREON_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")

add_library(vireon_warnings INTERFACE)
target_compile_options(vireon_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wformat=2
    $<$<BOOL:${VIREON_WARNINGS_AS_ERRORS}>:-Werror>)
# GCC 12 sees overlapping copies in std::string's own operator+ where there are none (its bug
# 105651, mended in 13).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(vireon_warnings INTERFACE -Wno-restrict)
endif()
# Code that a sanitizer has been through hides from GCC what was set before it is read; the standard
# library's regular expressions already count as unset there.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND VIREON_SANITIZE)
    target_compile_options(vireon_warnings INTERFACE -Wno-maybe-uninitialized)
endif()

# Floating point that gives the same bits from every compiler and on every system: no contraction
# into fused multiply-add, no reassociation, SSE arithmetic only. errno is never read, so square
# roots may be inlined; that changes no result.
add_library(vireon_exact_math INTERFACE)
target_compile_options(vireon_exact_math INTERFACE
    -ffp-contract=off -fno-fast-math -fno-math-errno -msse2 -mfpmath=sse)

if(VIREON_SANITIZE)
    add_compile_options(-fsanitize=${VIREON_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VIREON_SANITIZE})
endif()

if(WIN32)
    # Nothing but the system's own libraries may be needed on the machine that loads us.
    add_link_options(-static)
    add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE _WIN32_WINNT=0x0601)
endif()
