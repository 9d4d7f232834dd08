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

/// What only a PE file says of itself.
struct WindowsFacts {
    std::uint32_t linkTime = 0;        ///< seconds; 0 where the linker was told to leave it out
    std::uint32_t exportTime = 0;      ///< the same, in the export directory
    std::uint16_t characteristics = 0; ///< the loader's permissions: IMAGE_DLLCHARACTERISTICS_...
    std::vector<std::uint16_t> fileVersion, productVersion; ///< four numbers each
    std::map<std::string, std::string> versionTexts;        ///< the resource's texts by their keys
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

    WindowsFacts windowsFacts() const {
        const std::uint64_t header = at<std::uint32_t>(0x3C);
        const std::uint64_t optionalHeader = header + 24;
        const std::uint64_t directories = optionalHeader + 112;
        constexpr std::uint64_t exportDirectory = 0, resourceDirectory = 16;
        WindowsFacts facts;
        facts.linkTime = at<std::uint32_t>(header + 8);
        facts.characteristics = at<std::uint16_t>(optionalHeader + 70);
        facts.exportTime = at<std::uint32_t>(place(at<std::uint32_t>(directories + exportDirectory)) + 4);
        peVersion(place(at<std::uint32_t>(directories + resourceDirectory)), facts);
        return facts;
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

    /// Finds the version resource: the tree's levels are type, name and language.
    void peVersion(std::uint64_t root, WindowsFacts& facts) const {
        constexpr std::uint32_t versionType = 16, isDirectory = 0x80000000;
        std::uint64_t directory = root;
        for (int level = 0; level < 3; level++) {
            const unsigned count = at<std::uint16_t>(directory + 12) + at<std::uint16_t>(directory + 14);
            std::uint64_t entry = directory + 16;
            if (level == 0)
                for (unsigned i = 0; i + 1 < count && at<std::uint32_t>(entry) != versionType; i++)
                    entry += 8;
            if (count == 0 || (level == 0 && at<std::uint32_t>(entry) != versionType)) return;
            directory = root + (at<std::uint32_t>(entry + 4) & ~isDirectory);
        }
        const std::uint64_t start = place(at<std::uint32_t>(directory));
        versionBlock(start, facts);
    }

    /// Reads one block of the resource, (length, value length, kind, key, value, inner blocks), and all
    /// inside it.
    std::uint64_t versionBlock(std::uint64_t start, WindowsFacts& facts) const {
        const auto length = at<std::uint16_t>(start);
        const auto valueLength = at<std::uint16_t>(start + 2);
        const bool isText = at<std::uint16_t>(start + 4) == 1;
        const std::string key = wideText(start + 6);
        std::uint64_t at4 = padded(start, start + 6 + 2 * (key.size() + 1));
        if (isText && valueLength > 0) facts.versionTexts[key] = wideText(at4);
        if (key == "VS_VERSION_INFO") {
            facts.fileVersion = fourNumbers(at4 + 8);
            facts.productVersion = fourNumbers(at4 + 16);
        }
        std::uint64_t inner = padded(start, at4 + valueLength * (isText ? 2U : 1U));
        while (length > 0 && inner < start + length)
            inner = padded(start, versionBlock(inner, facts));
        return start + (length > 0 ? length : 6U);
    }

    static std::uint64_t padded(std::uint64_t start, std::uint64_t offset) {
        return start + (offset - start + 3) / 4 * 4;
    }

    std::vector<std::uint16_t> fourNumbers(std::uint64_t offset) const {
        return {at<std::uint16_t>(offset + 2), at<std::uint16_t>(offset), at<std::uint16_t>(offset + 6),
                at<std::uint16_t>(offset + 4)};
    }

    /// Zero-terminated UTF-16 text, all of it ASCII.
    std::string wideText(std::uint64_t offset) const {
        std::string text;
        for (; at<std::uint16_t>(offset) != 0; offset += 2)
            text += static_cast<char>(at<std::uint16_t>(offset));
        return text;
    }

    std::vector<char> bytes_;
};

} // namespace tav::test
