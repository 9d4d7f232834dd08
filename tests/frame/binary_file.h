// What a loader sees of a built library, read from the file's own bytes: exported names (with ordinals where
// the format has them), imported libraries and the name that the file gives itself. Reads 64-bit
// little-endian ELF and PE32+ as far as the tests need; a file that is neither gives empty answers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tav::test {

struct LibraryFacts {
    std::string ownName;
    std::map<std::string, int> exports; ///< name and ordinal; the ordinal is 0 in an ELF file
    std::set<std::string> imports;      ///< names of the libraries that the loader brings in
};

class BinaryFile {
public:
    explicit BinaryFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    LibraryFacts facts() const {
        if (view().substr(0, 4) == "\x7f"
                                   "ELF")
            return elf();
        if (view().substr(0, 2) == "MZ") return pe();
        return {};
    }

private:
    std::string_view view() const { return {bytes_.data(), bytes_.size()}; }

    template <class T>
    T at(std::uint64_t offset) const {
        T value{};
        if (offset + sizeof(T) <= bytes_.size()) std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        return value;
    }

    std::string text(std::uint64_t offset) const {
        if (offset >= bytes_.size()) return {};
        const std::string_view rest = view().substr(offset);
        return std::string(rest.substr(0, rest.find('\0')));
    }

    LibraryFacts elf() const {
        constexpr std::uint32_t dynamicSection = 6, dynamicSymbols = 11;
        const auto sections = at<std::uint64_t>(0x28);
        const auto sectionSize = at<std::uint16_t>(0x3A);
        const auto sectionCount = at<std::uint16_t>(0x3C);
        LibraryFacts facts;
        for (std::uint64_t i = 0; i < sectionCount; i++) {
            const std::uint64_t section = sections + i * sectionSize;
            const auto kind = at<std::uint32_t>(section + 4);
            if (kind != dynamicSection && kind != dynamicSymbols) continue;
            const auto start = at<std::uint64_t>(section + 0x18);
            const auto end = start + at<std::uint64_t>(section + 0x20);
            const auto strings =
                at<std::uint64_t>(sections + at<std::uint32_t>(section + 0x28) * sectionSize + 0x18);
            if (kind == dynamicSymbols)
                elfSymbols(start, end, strings, facts);
            else
                elfDynamic(start, end, strings, facts);
        }
        return facts;
    }

    void elfSymbols(std::uint64_t start, std::uint64_t end, std::uint64_t strings,
                    LibraryFacts& facts) const {
        constexpr int local = 0, visibleToAll = 0;
        for (std::uint64_t symbol = start; symbol < end; symbol += 24) {
            const bool undefined = at<std::uint16_t>(symbol + 6) == 0;
            if (undefined || at<std::uint8_t>(symbol + 4) >> 4 == local) continue;
            if ((at<std::uint8_t>(symbol + 5) & 3) != visibleToAll) continue;
            facts.exports[text(strings + at<std::uint32_t>(symbol))] = 0;
        }
    }

    void elfDynamic(std::uint64_t start, std::uint64_t end, std::uint64_t strings,
                    LibraryFacts& facts) const {
        constexpr std::uint64_t needed = 1, ownName = 14;
        for (std::uint64_t entry = start; entry < end; entry += 16) {
            const auto tag = at<std::uint64_t>(entry);
            const std::string name = text(strings + at<std::uint64_t>(entry + 8));
            if (tag == needed) facts.imports.insert(name);
            if (tag == ownName) facts.ownName = name;
        }
    }

    LibraryFacts pe() const {
        const std::uint64_t header = at<std::uint32_t>(0x3C);
        const std::uint64_t optionalHeader = header + 24;
        const std::uint64_t directories = optionalHeader + 112;
        LibraryFacts facts;
        peExports(at<std::uint32_t>(directories), facts);
        peImports(at<std::uint32_t>(directories + 8), facts);
        return facts;
    }

    /// The place in the file of an address relative to the image's base.
    std::uint64_t place(std::uint32_t address) const {
        const std::uint64_t header = at<std::uint32_t>(0x3C);
        const auto count = at<std::uint16_t>(header + 6);
        const std::uint64_t sections = header + 24 + at<std::uint16_t>(header + 20);
        for (std::uint64_t i = 0; i < count; i++) {
            const std::uint64_t section = sections + i * 40;
            const auto start = at<std::uint32_t>(section + 12);
            if (address >= start && address - start < at<std::uint32_t>(section + 16))
                return at<std::uint32_t>(section + 20) + (address - start);
        }
        return bytes_.size();
    }

    void peExports(std::uint32_t directory, LibraryFacts& facts) const {
        const std::uint64_t table = place(directory);
        const auto base = at<std::uint32_t>(table + 16);
        const auto count = at<std::uint32_t>(table + 24);
        const std::uint64_t names = place(at<std::uint32_t>(table + 32));
        const std::uint64_t ordinals = place(at<std::uint32_t>(table + 36));
        facts.ownName = text(place(at<std::uint32_t>(table + 12)));
        for (std::uint64_t i = 0; i < count; i++)
            facts.exports[text(place(at<std::uint32_t>(names + 4 * i)))] =
                static_cast<int>(base + at<std::uint16_t>(ordinals + 2 * i));
    }

    void peImports(std::uint32_t directory, LibraryFacts& facts) const {
        for (std::uint64_t entry = place(directory); at<std::uint32_t>(entry + 12) != 0; entry += 20)
            facts.imports.insert(text(place(at<std::uint32_t>(entry + 12))));
    }

    std::vector<char> bytes_;
};

} // namespace tav::test
