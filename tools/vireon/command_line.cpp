#include "tools/vireon/command_line.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include <CLI/CLI.hpp>

#include "tools/vireon/commands/brush.h"
#include "tools/vireon/commands/describe.h"
#include "tools/vireon/commands/presets.h"
#include "tools/vireon/commands/render.h"
#include "tools/vireon/commands/shapes.h"
#include "tools/vireon/exit_codes.h"
#include "tools/vireon/interruption.h"
#include "tools/vireon/names.h"
#include "tools/vireon/tool_error.h"

namespace vireon::tool {
namespace {

std::string ExitCodeTable() {
    std::string table = "Exit codes:";
    for (const ExitCodeMeaning& entry : ExitCodes()) {
        char line[128];
        std::snprintf(line, sizeof line, "\n  %3d  %s", entry.code, entry.meaning);
        table += line;
    }
    return table;
}

bool Contains(const std::vector<std::string>& arguments, const char* argument) {
    return std::find(arguments.begin(), arguments.end(), argument) != arguments.end();
}

int Fail(ExitCode code, std::string text) {
    text = text.substr(0, text.find('\n'));
    std::fprintf(stderr, "vireon: %s\n", text.c_str());
    return code;
}

std::vector<std::string> CommandsOf(const CLI::App& app) {
    std::vector<std::string> commands;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        commands.push_back(command->get_name());
    }
    return commands;
}

/// Looks at the first argument and, where that is a command with commands of its own, at the next.
void RejectUnknownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
    const CLI::App* of = &app;
    std::string path;
    for (const std::string& argument : arguments) {
        const std::vector<std::string> commands = CommandsOf(*of);
        if (commands.empty() || argument.substr(0, 1) == "-") {
            return;
        }
        if (!std::count(commands.begin(), commands.end(), argument)) {
            throw ToolError(kBadCommandLine, "there is no command \"" + path + argument + "\"" +
                                                 Suggestion(argument, commands, path) +
                                                 "; vireon " + path + "--help lists them");
        }
        of = of->get_subcommand(argument);
        path += argument + " ";
    }
}

int Parse(CLI::App& app, const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::Success& wish) {  // help or version was asked for
        app.exit(wish);
        return -1;
    }
    return 0;
}

int Run(const std::vector<std::string>& arguments) {
    CLI::App app("Renders the Vireon Glow effect on pictures, without a host application.",
                 "vireon");
    app.require_subcommand(1);
    app.set_version_flag("--version", "vireon " VIREON_VERSION);
    app.footer(ExitCodeTable());
    RenderCommand render(app);
    DescribeCommand describe(app);
    ShapesCommand shapes(app);
    BrushCommand brush(app);
    PresetsCommand presets(app);

    const bool wantsHelp = Contains(arguments, "--help") || Contains(arguments, "-h");
    if (!arguments.empty() && arguments.front() == "render") {
        try {
            render.addParameters(arguments);
        } catch (const ToolError&) {
            if (wantsHelp) {
                // What is known without the effect is better than nothing.
                Parse(app, arguments);
            }
            throw;
        }
    }
    RejectUnknownCommand(app, arguments);
    if (Parse(app, arguments) != 0) {
        return kSuccess;
    }
    if (render.wasChosen()) {
        render.run();
    } else if (describe.wasChosen()) {
        describe.run();
    } else if (shapes.wasChosen()) {
        shapes.run();
    } else if (brush.wasChosen()) {
        brush.run();
    } else if (presets.wasChosen()) {
        presets.run();
    }
    return kSuccess;
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments) {
    WatchForInterruption();
    try {
        const int code = Run(arguments);
        if (std::fflush(stdout) != 0) {
            return Fail(kOutputFailed, "cannot write to standard output");
        }
        return code;
    } catch (const ToolError& error) {
        std::fflush(stdout);
        return Fail(error.code(), error.what());
    } catch (const CLI::ParseError& error) {
        return Fail(kBadCommandLine, std::string(error.what()) + " (vireon --help tells more)");
    } catch (const std::bad_alloc&) {
        return Fail(kInternalError, "out of memory");
    } catch (const std::exception& error) {
        return Fail(kInternalError, error.what());
    }
}

}  // namespace vireon::tool
