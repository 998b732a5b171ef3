#include "tools/vireon/commands/common.h"

#include <algorithm>

namespace vireon::tool {

void AddPluginOptions(CLI::App& command, PluginOptions& options) {
    command
        .add_option("--plugin", options.plugin,
                    "Effect to load; .aex and .dll run through Wine\n"
                    "(default: VireonGlow.so beside this program)")
        ->type_name("FILE");
    command
        .add_option("--timeout", options.timeoutSeconds,
                    "End an effect that gives no sign of life for so long; 0 waits for ever\n"
                    "(default: 300)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e9).description(""));
    command.add_flag("--verbose", options.verbose, "Pass on what the effect prints");
}

PluginOptions ScanPluginOptions(const std::vector<std::string>& arguments) {
    CLI::App scan;
    scan.allow_extras();
    scan.set_help_flag();
    PluginOptions options;
    AddPluginOptions(scan, options);
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        scan.parse(reversed);
    } catch (const CLI::ParseError&) {
        return options;
    }
    return options;
}

}  // namespace vireon::tool
