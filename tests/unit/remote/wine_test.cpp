#include "headless/remote/wine.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace vireon::headless {
namespace {

/// Sets or unsets an environment variable for a test.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        const char* const old = std::getenv(name);
        if (old != nullptr) {
            old_ = old;
        }
        set(value);
    }
    ~Variable() { set(old_ ? old_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void set(const char* value) const {
        if (value == nullptr) {
            unsetenv(name_);
        } else {
            setenv(name_, value, 1);
        }
    }

    const char* name_;
    std::optional<std::string> old_;
};

TEST(Wine, KnowsWindowsLibrariesByTheirNames) {
    EXPECT_TRUE(IsWindowsLibrary("VireonGlow.aex"));
    EXPECT_TRUE(IsWindowsLibrary("a/b/X.AEX"));
    EXPECT_TRUE(IsWindowsLibrary("x.Dll"));
    EXPECT_FALSE(IsWindowsLibrary("VireonGlow.so"));
    EXPECT_FALSE(IsWindowsLibrary("aex"));
    EXPECT_FALSE(IsWindowsLibrary("x.aex.so"));
}

TEST(Wine, PathsGoToDriveZ) {
    EXPECT_EQ(WindowsPath("/opt/a b/c.aex"), "Z:\\opt\\a b\\c.aex");
    EXPECT_EQ(WindowsPath("/opt/x/../c.aex"), "Z:\\opt\\c.aex");
    const std::string relative = WindowsPath("c.aex");
    EXPECT_EQ(relative.substr(0, 3), "Z:\\");
    EXPECT_TRUE(relative.ends_with("\\c.aex"));
}

TEST(Wine, PrefixIsOurOwn) {
    const Variable home("HOME", "/home/someone");
    const Variable userPrefix("WINEPREFIX", "/home/someone/.wine");
    {
        const Variable own("VIREON_WINE_PREFIX", "/tmp/p");
        EXPECT_EQ(DefaultWinePrefix(), "/tmp/p");
    }
    const Variable own("VIREON_WINE_PREFIX", nullptr);
    {
        const Variable cache("XDG_CACHE_HOME", "/var/c");
        EXPECT_EQ(DefaultWinePrefix(), "/var/c/vireon/wine-prefix");
    }
    const Variable cache("XDG_CACHE_HOME", nullptr);
    EXPECT_EQ(DefaultWinePrefix(), "/home/someone/.cache/vireon/wine-prefix");
    const Variable noHome("HOME", nullptr);
    EXPECT_TRUE(DefaultWinePrefix().is_absolute()) << DefaultWinePrefix();
}

TEST(Wine, CommandHasNoDisplayAndNoUserPrefix) {
    const std::filesystem::path prefix =
        std::filesystem::path(testing::TempDir()) / "vireon-prefix" / "inner";
    const ChildCommand command = WineCommand("/usr/bin/wine64", prefix, "/opt/worker.exe");
    EXPECT_EQ(command.program, "/usr/bin/wine64");
    EXPECT_EQ(command.arguments, std::vector<std::string>{"Z:\\opt\\worker.exe"});
    EXPECT_EQ(command.environment.at("WINEPREFIX"), prefix.string());
    EXPECT_EQ(command.environment.at("DISPLAY"), std::nullopt);
    EXPECT_EQ(command.environment.at("WAYLAND_DISPLAY"), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_directory(prefix));
    std::filesystem::remove_all(prefix.parent_path());
}

TEST(Wine, ChosenProgramMustExist) {
    const Variable chosen("VIREON_WINE", "/nonexistent/wine");
    EXPECT_TRUE(FindWine().empty());
    const Variable shell("VIREON_WINE", "/bin/sh");
    EXPECT_EQ(FindWine(), "/bin/sh");
}

}  // namespace
}  // namespace vireon::headless
