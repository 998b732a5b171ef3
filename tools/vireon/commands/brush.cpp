#include "tools/vireon/commands/brush.h"

#include "tools/vireon/tool_error.h"

namespace vireon::tool {

BrushCommand::BrushCommand(CLI::App& app)
    : command_(app.add_subcommand("brush", "Show, make and check brush files (the glow shapes)")),
      show_(*command_),
      make_(*command_),
      check_(*command_) {
    command_->require_subcommand(0, 1);
    command_->footer(
        "The effect reads its brushes from the folder Vireon/Brush beside it. A folder of your "
        "own\nis chosen by the environment variable ORVANTE_QUILLON_SVG_DIR; it has to hold every "
        "brush\nunder the name that `vireon brush check` lists. They are read once, when a host's "
        "process\nrenders its first frame.");
}

void BrushCommand::run() {
    if (show_.wasChosen()) {
        show_.run();
    } else if (make_.wasChosen()) {
        make_.run();
    } else if (check_.wasChosen()) {
        check_.run();
    } else {
        throw ToolError(kBadCommandLine,
                        "a command is wanted: vireon brush show, make or check (vireon brush "
                        "--help tells more)");
    }
}

}  // namespace vireon::tool
