#include "tools/vireon/commands/brush.h"

namespace vireon::tool {

BrushCommand::BrushCommand(CLI::App& app)
    : command_(app.add_subcommand("brush", "Show, make and check brush files (the glow shapes)")),
      show_(*command_),
      make_(*command_),
      check_(*command_) {
    command_->require_subcommand(1);
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
    }
}

}  // namespace vireon::tool
