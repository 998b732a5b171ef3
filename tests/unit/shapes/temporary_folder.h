#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

namespace vireon::test {

/// An empty folder of the test's own, removed with everything in it at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::random_device device;
        path_ = std::filesystem::temp_directory_path() /
                ("vireon-unit-" + std::to_string(device()) + std::to_string(device()));
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file byte by byte as given.
    std::filesystem::path write(const std::filesystem::path& name, const std::string& text) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

  private:
    std::filesystem::path path_;
};

/// Sets an environment variable of this process; an empty value removes it.
inline void SetEnvironment(const char* name, const std::string& value) {
#ifdef _WIN32
    _putenv_s(name, value.c_str());
#else
    if (value.empty()) {
        unsetenv(name);
    } else {
        setenv(name, value.c_str(), 1);
    }
#endif
}

/// A brush file of one value throughout.
inline std::string FlatBrush(const std::string& sample) {
    std::string text = "256\n256\nflat\n";
    for (int i = 0; i < 256 * 256; ++i) text += sample + "\n";
    return text;
}

}  // namespace vireon::test
