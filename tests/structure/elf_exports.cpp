#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/structure/pe_file.h"

namespace vireon::structure {

std::vector<std::string> ElfExports(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
    const auto read = [&bytes](auto& value, std::size_t offset) {
        if (offset + sizeof value > bytes.size()) throw std::runtime_error("table beyond the file");
        std::memcpy(&value, bytes.data() + offset, sizeof value);
    };

    Elf64_Ehdr header;
    read(header, 0);
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    for (std::size_t i = 0; i < sections.size(); ++i) {
        read(sections[i], header.e_shoff + i * header.e_shentsize);
    }
    std::vector<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) continue;
        for (std::size_t at = 0; at < section.sh_size; at += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol;
            read(symbol, section.sh_offset + at);
            const bool local = ELF64_ST_BIND(symbol.st_info) == STB_LOCAL;
            if (symbol.st_shndx == SHN_UNDEF || local) continue;
            names.emplace_back(bytes.data() + sections.at(section.sh_link).sh_offset +
                               symbol.st_name);
        }
    }
    return names;
}

}  // namespace vireon::structure
