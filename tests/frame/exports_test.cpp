// The built library file against the export list: names, ordinals, what it is called and what it needs.
// The test runs in the folder of the library; TAVCH_LIBRARY_FILE is its file name.
#include "frame/binary_file.h"
#include "frame/export_list.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>

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
