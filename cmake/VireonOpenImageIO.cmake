# vireon_openimageio, the image library of our command line programs.
#
# The package configuration that Debian ships for OpenImageIO refers to the headers of every optional
# library that it was built with, installed or not; only its own are needed.
if(NOT TARGET vireon_openimageio)
    find_path(VIREON_OPENIMAGEIO_INCLUDE OpenImageIO/imageio.h REQUIRED)
    find_library(VIREON_OPENIMAGEIO_LIBRARY OpenImageIO REQUIRED)
    find_library(VIREON_OPENIMAGEIO_UTIL_LIBRARY OpenImageIO_Util REQUIRED)
    add_library(vireon_openimageio INTERFACE IMPORTED GLOBAL)
    target_include_directories(vireon_openimageio SYSTEM INTERFACE "${VIREON_OPENIMAGEIO_INCLUDE}")
    target_link_libraries(vireon_openimageio
        INTERFACE "${VIREON_OPENIMAGEIO_LIBRARY}" "${VIREON_OPENIMAGEIO_UTIL_LIBRARY}")
endif()
