#include "tools/vireon/command_line.h"

int main(int argc, char** argv) {
    return vireon::tool::RunCommandLine({argv + 1, argv + argc});
}
