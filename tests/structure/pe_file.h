#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vireon::structure {

/// A Windows library read as bytes: enough of its tables to see what it exports, what it needs and
/// which resources it carries.
class PeFile {
  public:
    /// \throws std::runtime_error when the file cannot be read or is no 64-bit library
    explicit PeFile(const std::string& path);

    /// Names of the exported functions.
    std::vector<std::string> exports() const;
    /// Names of the libraries that it imports from, in upper case.
    std::vector<std::string> imports() const;
    /// Bytes of the first language of a resource; empty when there is none.
    std::vector<std::uint8_t> resource(const std::string& typeName, std::uint32_t id) const;
    std::vector<std::uint8_t> resource(std::uint32_t type, std::uint32_t id) const;

  private:
    struct Section {
        std::uint32_t address;
        std::uint32_t size;
        std::uint32_t offset;
    };

    template <typename Value>
    Value at(std::size_t offset) const;
    std::string textAt(std::size_t offset) const;
    /// File offset of an address in the loaded image.
    std::size_t offsetOf(std::uint32_t address) const;
    /// Address of one of the tables that the header lists; 0 when there is none.
    std::uint32_t directory(std::size_t index) const;
    std::string resourceName(std::size_t base, std::uint32_t name) const;
    std::vector<std::uint8_t> findResource(const std::string& type, std::uint32_t id) const;

    std::vector<std::uint8_t> bytes_;
    std::vector<Section> sections_;
    std::size_t directories_ = 0;
};

/// Names of the functions that a native library defines for others.
std::vector<std::string> ElfExports(const std::string& path);

}  // namespace vireon::structure
