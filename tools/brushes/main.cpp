#include <cstdio>
#include <cstring>
#include <exception>

#include "tools/brushes/brush_file.h"
#include "tools/brushes/shapes.h"

namespace {

void PrintUsage(std::FILE* stream) {
    std::fputs(
        "usage: vireon-brushes OUTDIR\n"
        "Draws the thirteen glow shapes as brush files into OUTDIR (made when missing).\n",
        stream);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        PrintUsage(stdout);
        return 0;
    }
    if (argc != 2 || argv[1][0] == '\0' || argv[1][0] == '-') {
        PrintUsage(stderr);
        return 2;
    }
    try {
        vireon::brushes::WriteBrushes(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vireon-brushes: %s\n", error.what());
        return 1;
    }
    std::printf("%zu brushes written to %s\n", vireon::brushes::Shapes().size(), argv[1]);
    return 0;
}
