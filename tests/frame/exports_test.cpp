// The built library file against the export list: names, ordinals, what it is called and what it needs.
// The test runs in the folder of the library; TAVCH_LIBRARY_FILE is its file name.
#include "frame/binary_file.h"
#include "frame/export_list.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

using namespace tav::test;

namespace {

const LibraryFacts& library() {
    static const LibraryFacts facts = BinaryFile(TAVCH_LIBRARY_FILE).facts();
    return facts;
}

std::map<std::string, int> expectedExports() {
    std::map<std::string, int> expected;
    for (const Export& entry : exportList) {
#if defined(_WIN32)
        expected[std::string(entry.name)] = entry.ordinal;
#else
        expected[std::string(entry.name)] = 0;
#endif
    }
    return expected;
}

#if defined(TAVCH_MICROSOFT_LIBRARY)

/// The short import objects of a library: 00 00 FF FF, version, machine, time, size, hint, kind, then the
/// name of the function and of the DLL. They are looked for by their first eight bytes.
std::map<std::string, int> microsoftImports(const std::string& path, const std::string& dll) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const std::string start("\0\0\xff\xff\0\0\x64\x86", 8);
    std::map<std::string, int> imports;
    for (std::size_t at = bytes.find(start); at != std::string::npos; at = bytes.find(start, at + 1)) {
        std::uint16_t hint = 0;
        std::memcpy(&hint, bytes.data() + at + 16, sizeof hint);
        const std::string name = bytes.c_str() + at + 20;
        if (bytes.c_str() + at + 20 + name.size() + 1 == dll) imports[name] = hint;
    }
    return imports;
}

#endif

} // namespace

TEST(ExportList, EachNameHasItsFinalOrdinal) {
    static_assert(std::size(nameOfOrdinal) == 90);
    for (const Export& entry : exportList) {
        ASSERT_GE(entry.ordinal, 1);
        ASSERT_LE(entry.ordinal, 90);
        EXPECT_EQ(entry.name, nameOfOrdinal[entry.ordinal - 1]);
    }
}

TEST(ExportList, NamesAreNumberedInAscendingByteOrder) {
    EXPECT_TRUE(std::is_sorted(std::begin(nameOfOrdinal), std::end(nameOfOrdinal)));
}

TEST(Library, ExportsExactlyTheNamesAndOrdinalsOfTheList) {
    EXPECT_EQ(library().exports, expectedExports());
}

#if defined(_WIN32)

TEST(Library, IsNamedWithMajorAndMinorVersion) {
    EXPECT_STREQ(TAVCH_LIBRARY_FILE, "tavch-8.2.dll");
    EXPECT_EQ(library().ownName, "tavch-8.2.dll");
}

TEST(Library, ImportsNothingButTheCoreLibraryTheCRuntimeAndTheKernel) {
    std::set<std::string> allowed = {"KERNEL32.dll", "msvcrt.dll", "tavcore-8.2.dll"};
    for (const std::string& name : library().imports) {
        const bool universalRuntime = name.rfind("api-ms-win-crt-", 0) == 0 || name == "ucrtbase.dll";
        EXPECT_TRUE(allowed.count(name) == 1 || universalRuntime) << name;
    }
    EXPECT_FALSE(library().imports.empty());
}

TEST(Library, CarriesTheNumbersOfTheVersionRecordAsItsResource) {
    const WindowsFacts facts = BinaryFile(TAVCH_LIBRARY_FILE).windowsFacts();
    const tavVersionRecord* version = tavchGetLibVersion();
    const std::vector<std::uint16_t> numbers = {
        static_cast<std::uint16_t>(version->versionMajor), static_cast<std::uint16_t>(version->versionMinor),
        static_cast<std::uint16_t>(version->versionPatch), static_cast<std::uint16_t>(version->buildNumber)};
    EXPECT_EQ(facts.fileVersion, numbers);
    EXPECT_EQ(facts.productVersion, numbers);
    const std::map<std::string, std::string> texts = {
        {"FileDescription", "String primitives and regular expressions"},
        {"FileVersion", "8.2.3.48108"},
        {"InternalName", "tavch"},
        {"LegalCopyright", "Licence: MIT"},
        {"OriginalFilename", TAVCH_LIBRARY_FILE},
        {"ProductName", version->libraryName},
        {"ProductVersion", version->versionText},
    };
    EXPECT_EQ(facts.versionTexts, texts);
}

TEST(Library, IsPlacedAnywhereAndItsDataIsNeverExecuted) {
    constexpr unsigned highEntropyAddresses = 0x20, movable = 0x40, noExecution = 0x100;
    constexpr unsigned wanted = highEntropyAddresses | movable | noExecution;
    for (const char* file : {TAVCH_LIBRARY_FILE, "tavcore-8.2.dll"})
        EXPECT_EQ(BinaryFile(file).windowsFacts().characteristics & wanted, wanted) << file;
}

TEST(Library, HoldsNoTimeSoThatTwoLinksGiveTheSameFile) {
    for (const char* file : {TAVCH_LIBRARY_FILE, "tavcore-8.2.dll"}) {
        EXPECT_EQ(BinaryFile(file).windowsFacts().linkTime, 0U) << file;
        EXPECT_EQ(BinaryFile(file).windowsFacts().exportTime, 0U) << file;
    }
}

TEST(ImportLibrary, OfMicrosoftsKindNamesEveryExportWithItsOrdinal) {
#if defined(TAVCH_MICROSOFT_LIBRARY)
    EXPECT_EQ(microsoftImports(TAVCH_MICROSOFT_LIBRARY, TAVCH_LIBRARY_FILE), expectedExports());
#else
    GTEST_SKIP() << "llvm-dlltool, which makes it, was not there";
#endif
}

TEST(Library, GivesTheSameFunctionByNameAndByOrdinal) {
    const HMODULE module = GetModuleHandleA(TAVCH_LIBRARY_FILE);
    ASSERT_NE(module, nullptr);
    for (const Export& entry : exportList) {
        const auto ordinal = static_cast<ULONG_PTR>(entry.ordinal);
        const auto byOrdinal = GetProcAddress(module, reinterpret_cast<LPCSTR>(ordinal));
        EXPECT_NE(byOrdinal, nullptr) << entry.name;
        EXPECT_EQ(byOrdinal, GetProcAddress(module, std::string(entry.name).c_str())) << entry.name;
    }
}

#else

TEST(Library, IsNamedWithTheFullVersionAndLoadedByTheMajorOne) {
    EXPECT_STREQ(TAVCH_LIBRARY_FILE, "libtavch.so.8.2.3");
    EXPECT_EQ(library().ownName, "libtavch.so.8");
}

TEST(Library, NeedsNothingButTheCoreLibraryAndTheCRuntime) {
#if defined(TAVCH_SANITIZE)
    GTEST_SKIP() << "the sanitizers bring their own libraries";
#else
    const std::set<std::string> allowed = {"libtavcore.so.8", "libc.so.6", "ld-linux-x86-64.so.2"};
    for (const std::string& name : library().imports)
        EXPECT_EQ(allowed.count(name), 1U) << name;
#endif
}

TEST(Library, GivesEveryFunctionByName) {
    void* module = dlopen("libtavch.so.8", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(module, nullptr);
    for (const Export& entry : exportList)
        EXPECT_NE(dlsym(module, std::string(entry.name).c_str()), nullptr) << entry.name;
    dlclose(module);
}

#endif

// Links the library, so that the tests above find it loaded.
TEST(Library, AnswersThroughItsFile) {
    EXPECT_EQ(tavchGetLibVersion()->versionMajor, 8);
}
