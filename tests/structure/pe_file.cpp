#include "tests/structure/pe_file.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vireon::structure {
namespace {

constexpr std::size_t kExportTable = 0;
constexpr std::size_t kImportTable = 1;
constexpr std::size_t kResourceTable = 2;
constexpr std::uint32_t kHighBit = 0x80000000u;

}  // namespace

template <typename Value>
Value PeFile::at(std::size_t offset) const {
    if (offset + sizeof(Value) > bytes_.size()) throw std::runtime_error("table beyond the file");
    Value value;
    std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
}

PeFile::PeFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path);
    bytes_.assign(std::istreambuf_iterator<char>(stream), {});

    const std::size_t header = at<std::uint32_t>(0x3C);
    if (at<std::uint32_t>(header) != 0x00004550u) throw std::runtime_error(path + " is no library");
    const auto sectionCount = at<std::uint16_t>(header + 6);
    const auto optionalSize = at<std::uint16_t>(header + 20);
    const std::size_t optional = header + 24;
    if (at<std::uint16_t>(optional) != 0x20B) throw std::runtime_error(path + " is not 64-bit");
    directories_ = optional + 112;
    for (std::size_t i = 0; i < sectionCount; ++i) {
        const std::size_t section = optional + optionalSize + i * 40;
        sections_.push_back({at<std::uint32_t>(section + 12), at<std::uint32_t>(section + 16),
                             at<std::uint32_t>(section + 20)});
    }
}

std::string PeFile::textAt(std::size_t offset) const {
    std::string text;
    for (; at<char>(offset) != '\0'; ++offset) text += at<char>(offset);
    return text;
}

std::size_t PeFile::offsetOf(std::uint32_t address) const {
    for (const Section& section : sections_) {
        if (address >= section.address && address < section.address + section.size) {
            return section.offset + (address - section.address);
        }
    }
    throw std::runtime_error("address outside every section");
}

std::uint32_t PeFile::directory(std::size_t index) const {
    return at<std::uint32_t>(directories_ + index * 8);
}

std::vector<std::string> PeFile::exports() const {
    std::vector<std::string> names;
    if (directory(kExportTable) == 0) return names;
    const std::size_t table = offsetOf(directory(kExportTable));
    const auto count = at<std::uint32_t>(table + 24);
    const std::size_t pointers = offsetOf(at<std::uint32_t>(table + 32));
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back(textAt(offsetOf(at<std::uint32_t>(pointers + i * 4))));
    }
    return names;
}

std::vector<std::string> PeFile::imports() const {
    std::vector<std::string> names;
    if (directory(kImportTable) == 0) return names;
    for (std::size_t entry = offsetOf(directory(kImportTable));; entry += 20) {
        const auto name = at<std::uint32_t>(entry + 12);
        if (name == 0) return names;
        std::string text = textAt(offsetOf(name));
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        names.push_back(text);
    }
}

std::string PeFile::resourceName(std::size_t base, std::uint32_t name) const {
    if ((name & kHighBit) == 0) return "#" + std::to_string(name);
    std::size_t offset = base + (name & ~kHighBit);
    std::string text;
    for (auto length = at<std::uint16_t>(offset); length > 0; --length) {
        offset += 2;
        text += static_cast<char>(at<std::uint16_t>(offset));
    }
    return text;
}

std::vector<std::uint8_t> PeFile::findResource(const std::string& type, std::uint32_t id) const {
    if (directory(kResourceTable) == 0) return {};
    const std::size_t base = offsetOf(directory(kResourceTable));
    // Three levels: type, id, language.
    const std::string wanted[] = {type, "#" + std::to_string(id)};
    std::size_t table = base;
    for (std::size_t level = 0;; ++level) {
        const std::size_t count =
            static_cast<std::size_t>(at<std::uint16_t>(table + 12)) + at<std::uint16_t>(table + 14);
        std::uint32_t found = 0;
        for (std::size_t i = 0; i < count && found == 0; ++i) {
            const std::size_t entry = table + 16 + i * 8;
            const bool matches = level >= std::size(wanted) ||
                                 resourceName(base, at<std::uint32_t>(entry)) == wanted[level];
            if (matches) found = at<std::uint32_t>(entry + 4);
        }
        if (found == 0) return {};
        table = base + (found & ~kHighBit);
        if ((found & kHighBit) == 0) break;
    }
    const std::size_t data = offsetOf(at<std::uint32_t>(table));
    const auto size = at<std::uint32_t>(table + 4);
    if (data + size > bytes_.size()) throw std::runtime_error("resource beyond the file");
    const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(data);
    return {first, first + size};
}

std::vector<std::uint8_t> PeFile::resource(const std::string& typeName, std::uint32_t id) const {
    return findResource(typeName, id);
}

std::vector<std::uint8_t> PeFile::resource(std::uint32_t type, std::uint32_t id) const {
    return findResource("#" + std::to_string(type), id);
}

}  // namespace vireon::structure
