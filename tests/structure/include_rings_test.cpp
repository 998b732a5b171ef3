// The sources are built in rings: pixel code knows no host, the host interfaces know no record of
// the host's contract, and the records stay with those who speak the contract. The rings hold as
// long as no file includes one that lies further out.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

enum class Ring { kPixels, kInterfaces, kRecords };

fs::path SourceFolder() {
    const char* root = std::getenv("VIREON_SOURCE_DIR");
    return root != nullptr ? fs::path(root) / "src" : fs::path("src");
}

bool StartsWith(const std::string& text, const std::string& prefix) {
    return text.rfind(prefix, 0) == 0;
}

/// Ring of a file by its path below src/.
Ring RingOf(const std::string& file) {
    for (const char* folder : {"sdk/", "shell/", "host/ae/"}) {
        if (StartsWith(file, folder)) return Ring::kRecords;
    }
    // Plain data that pixel code may read lies with whoever defines its meaning.
    static const std::set<std::string> plainData = {
        "shapes/glow_kernel.h",        "shapes/glow_kernel.cpp",      "render/glow_settings.h",
        "composite/blend_settings.h",  "composite/finite_light.h",    "composite/transfer_codes.h",
        "composite/output_passes.h",   "composite/output_passes.cpp", "glow/convolution_report.h",
        "glow/convolution_report.cpp",
    };
    const bool pixelFile = file.find("_pixels.") != std::string::npos;
    if (StartsWith(file, "image/") || StartsWith(file, "simd/") || pixelFile ||
        plainData.count(file) != 0) {
        return Ring::kPixels;
    }
    return Ring::kInterfaces;
}

std::vector<std::string> IncludesOf(const fs::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> includes;
    for (std::string line; std::getline(stream, line);) {
        const std::string prefix = "#include \"";
        if (!StartsWith(line, prefix)) continue;
        includes.push_back(line.substr(prefix.size(), line.rfind('"') - prefix.size()));
    }
    return includes;
}

std::map<std::string, std::vector<std::string>> AllIncludes() {
    std::map<std::string, std::vector<std::string>> graph;
    const fs::path root = SourceFolder();
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp" && extension != ".inc") continue;
        graph[fs::relative(entry.path(), root).generic_string()] = IncludesOf(entry.path());
    }
    return graph;
}

TEST(IncludeRings, SourcesAreFound) {
    const auto graph = AllIncludes();
    EXPECT_GT(graph.size(), 50u);
    EXPECT_EQ(graph.count("shell/entry_point.cpp"), 1u);
}

TEST(IncludeRings, EveryIncludeOfOursNamesAFile) {
    const auto graph = AllIncludes();
    for (const auto& [file, includes] : graph) {
        for (const std::string& include : includes) {
            EXPECT_EQ(graph.count(include), 1u) << file << " includes " << include;
        }
    }
}

TEST(IncludeRings, NoFileIncludesOneOfAnOuterRing) {
    for (const auto& [file, includes] : AllIncludes()) {
        for (const std::string& include : includes) {
            EXPECT_LE(RingOf(include), RingOf(file)) << file << " includes " << include;
        }
    }
}

TEST(IncludeRings, HostRecordsAreNamedOnlyByThoseWhoSpeakTheContract) {
    for (const auto& [file, includes] : AllIncludes()) {
        if (RingOf(file) == Ring::kRecords) continue;
        std::ifstream stream(SourceFolder() / file);
        std::stringstream text;
        text << stream.rdbuf();
        for (const char* record : {"PF_", "sdk::", "SPBasicSuite"}) {
            EXPECT_EQ(text.str().find(record), std::string::npos) << file << " names " << record;
        }
    }
}

TEST(IncludeRings, SystemHeadersOfOneSystemStayInThePlatformFolder) {
    for (const auto& [file, includes] : AllIncludes()) {
        if (StartsWith(file, "platform/windows/") || StartsWith(file, "platform/posix/")) continue;
        std::ifstream stream(SourceFolder() / file);
        for (std::string line; std::getline(stream, line);) {
            for (const char* header : {"<windows.h>", "<dlfcn.h>", "<unistd.h>", "<sys/"}) {
                EXPECT_EQ(line.find(std::string("#include ") + header), std::string::npos)
                    << file << ": " << line;
            }
        }
    }
}

}  // namespace
