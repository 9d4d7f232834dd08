// The allocating initialisers on an allocator that fails and counts: this program brings its own core
// library.
#include "tavch.h"
#include "tavcore.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

struct Allocator {
    int calls = 0;
    int live = 0;
    std::size_t lastSize = 0;
    int failsAt = 0; // which call from now on fails; 0: none
};
Allocator allocator;

class Allocation : public testing::Test {
protected:
    void SetUp() override { allocator = {}; }
    void TearDown() override { EXPECT_EQ(allocator.live, 0) << "every block is released once"; }
};

} // namespace

extern "C" void* tavMalloc(size_t size) {
    allocator.calls++;
    allocator.lastSize = size;
    if (allocator.calls == allocator.failsAt) return nullptr;
    allocator.live++;
    return std::malloc(size);
}

extern "C" void tavFree(void* block) {
    allocator.live -= block != nullptr;
    std::free(block);
}

TEST_F(Allocation, OfAPatternAsksForTheStatedSizeOnce) {
    tavRegExpContext* pattern = nullptr;
    int32_t size = 0, errOffset = -7;
    ASSERT_EQ(tavsRegExpGetSize("a(b+)c", &size), tavStsNoError);
    ASSERT_EQ(tavsRegExpInitAlloc("a(b+)c", "i", &pattern, &errOffset), tavStsNoError);
    EXPECT_EQ(allocator.calls, 1);
    EXPECT_EQ(allocator.lastSize, static_cast<std::size_t>(size));
    EXPECT_EQ(tavsRegExpFree(pattern), tavStsNoError);
}

TEST_F(Allocation, OfAPatternMayFail) {
    allocator.failsAt = 1;
    tavRegExpContext* pattern = reinterpret_cast<tavRegExpContext*>(&allocator);
    int32_t errOffset = -7;
    EXPECT_EQ(tavsRegExpInitAlloc("a(b+)c", "i", &pattern, &errOffset), tavStsNullPointer);
    EXPECT_EQ(pattern, nullptr);
    EXPECT_EQ(errOffset, -7);
    EXPECT_EQ(allocator.calls, 1);
}

TEST_F(Allocation, OfARefusedPatternIsReleased) {
    tavRegExpContext* pattern = reinterpret_cast<tavRegExpContext*>(&allocator);
    int32_t errOffset = -7;
    EXPECT_EQ(tavsRegExpInitAlloc("a(b", nullptr, &pattern, &errOffset), tavStsPatternSyntax);
    EXPECT_EQ(pattern, nullptr);
    EXPECT_EQ(allocator.calls, 1);
    EXPECT_EQ(tavsRegExpInitAlloc("a", "q", &pattern, &errOffset), tavStsBadOption);
    EXPECT_EQ(pattern, nullptr);
    EXPECT_EQ(tavsRegExpInitAlloc("a", nullptr, &pattern, nullptr), tavStsNullPointer);
    EXPECT_EQ(pattern, nullptr);
}

TEST_F(Allocation, IsNotTriedForRefusedArguments) {
    tavRegExpContext* pattern = nullptr;
    tavRegExpMultiContext* set = nullptr;
    int32_t errOffset = 0;
    EXPECT_EQ(tavsRegExpInitAlloc(nullptr, nullptr, &pattern, &errOffset), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpInitAlloc("a", nullptr, nullptr, &errOffset), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiInitAlloc(nullptr, 1), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiInitAlloc(&set, 0), tavStsBadCount);
    EXPECT_EQ(tavsRegExpMultiInitAlloc(&set, 178956969), tavStsBadCount);
    EXPECT_EQ(allocator.calls, 0);
}

TEST_F(Allocation, OfASetAsksForTheStatedSizeOnceAndMayFail) {
    tavRegExpMultiContext* set = nullptr;
    int32_t size = 0;
    ASSERT_EQ(tavsRegExpMultiGetSize(5, &size), tavStsNoError);
    ASSERT_EQ(tavsRegExpMultiInitAlloc(&set, 5), tavStsNoError);
    EXPECT_EQ(allocator.calls, 1);
    EXPECT_EQ(allocator.lastSize, static_cast<std::size_t>(size));
    EXPECT_EQ(tavsRegExpMultiFree(set), tavStsNoError);
    allocator.failsAt = 2;
    EXPECT_EQ(tavsRegExpMultiInitAlloc(&set, 5), tavStsNullPointer);
    EXPECT_EQ(set, nullptr);
    EXPECT_EQ(allocator.calls, 2);
}

TEST_F(Allocation, HappensNowhereElse) {
    std::vector<uint64_t> block((24 * 6 + 48056) / 8), items(20), slots(20);
    auto* const pattern = reinterpret_cast<tavRegExpContext*>(block.data());
    auto* const replacement = reinterpret_cast<tavRegExpReplaceContext*>(items.data());
    auto* const set = reinterpret_cast<tavRegExpMultiContext*>(slots.data());
    const auto* const text = reinterpret_cast<const uint8_t*>("xabbcx");
    tavRegExpFindResult found[4];
    int32_t errOffset = 0, count = 4, read = 6, written = 20;
    uint8_t out[20];
    EXPECT_EQ(tavsRegExpInit("a(b+)c", "g", pattern, &errOffset), tavStsNoError);
    EXPECT_EQ(tavsRegExpFind_8u(text, 6, pattern, found, &count), tavStsNoError);
    EXPECT_EQ(tavsRegExpReplaceInit("<$1>", replacement), tavStsNoError);
    count = 4;
    EXPECT_EQ(tavsRegExpReplace_8u(text, &read, out, &written, found, &count, pattern, replacement),
              tavStsNoError);
    EXPECT_EQ(tavsRegExpMultiInit(set, 2), tavStsNoError);
    EXPECT_EQ(tavsRegExpMultiAdd(pattern, 1, set), tavStsNoError);
    tavRegExpMultiFindResult results[2] = {{0, 0, 4, 0, found}, {0, 0, 0, 0, nullptr}};
    EXPECT_EQ(tavsRegExpMultiFind_8u(text, 6, results, set), tavStsNoError);
    EXPECT_EQ(allocator.calls, 0);
}
