#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace vireon::tool {

/// A folder for one test, gone afterwards.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string name = (std::filesystem::path(testing::TempDir()) / "vireon-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            ADD_FAILURE() << "cannot make " << name;
        }
        path_ = name;
    }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    /// Number of entries, hidden ones included.
    int count() const {
        int entries = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path_)) {
            ++entries;
        }
        return entries;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace vireon::tool
