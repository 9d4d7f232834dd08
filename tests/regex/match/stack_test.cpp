// The matcher on small stacks: the deepest searches, in threads with little more than the 256 KiB that a
// search under the default limit may use, and with limits that no such stack can hold.
#include "tavch.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::size_t threadStack = std::size_t{320} << 10;
constexpr std::size_t searchStack = std::size_t{256} << 10;
constexpr uint8_t paint = 0xA5;

struct Deep {
    const char* pattern;
    const char* unit; // repeated `count` times
    int count = 12000;
    const char* tail = "";
};

/// Every kind of nesting that spends levels.
const Deep deepest[] = {
    {"(a|b)*", "ab"},
    {"(?:a|b)*?c", "ab", 1660, "c"},
    {"(?:ab)*", "ab"},
    {"((a)|(b))*", "ab"},
    {"(a*b)*", "aab"},
    {"(?:(a(?=b))|b)*", "ab"},
    {"(?:(?=(a)|(b))\\w)*", "ab"},
    {"(?>a|b)*", "ab"},
    {"(?>a|b)*?c", "ab", 4900, "c"},
    {"(?:(?(?=a)a|b))*", "ab"},
    {"(((a)|b))*", "ab"},
    {"(?:(?<=b)a|b|a)*", "ab"},
    {"(?i:a|(b))*", "aB"},
    {"(.)*", "ab"},
    {"(a|aa)+$", "a", 12000, "b"}, // remembers what has failed
    {"(?:(a|aa)+|(b)+?)*?$", "aab", 6000, "c"},
};

/// Bodies that capture and give their levels back: what they captured takes more room than their levels.
const Deep keeping[] = {
    {"(?>a(b)|)*", "ab"},
    {"(?>((((((a))))))|b)*", "ab"},
    {"(?:(?=(a)(b)(a)(b)(a)(b)(a))a|b)*", "ab"},
};

struct Search {
    tavRegExpContext* pattern;
    const std::string* subject;
    tavStatus status = -1;
    int32_t found = 0;
};

void* run(void* raw) {
    Search& search = *static_cast<Search*>(raw);
    tavRegExpFindResult results[10];
    search.found = 10;
    search.status = tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>(search.subject->c_str()),
                                      static_cast<int32_t>(search.subject->size()), search.pattern, results,
                                      &search.found);
    return nullptr;
}

void searchOnSmallStack(const Deep& deep, int32_t limit, pthread_attr_t& attributes) {
    tavRegExpContext* pattern = nullptr;
    int32_t offset = 0;
    ASSERT_EQ(tavsRegExpInitAlloc(deep.pattern, nullptr, &pattern, &offset), tavStsNoError);
    tavsRegExpSetMatchLimit(limit, pattern);
    std::string subject;
    for (int i = 0; i < deep.count; ++i)
        subject += deep.unit;
    subject += deep.tail;
    Search search = {pattern, &subject};
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &search), 0);
    pthread_join(thread, nullptr);
    EXPECT_EQ(search.status, tavStsNoError);
    EXPECT_GE(search.found, 0);
    tavsRegExpFree(pattern);
}

class SmallStack : public testing::Test {
protected:
    void SetUp() override {
        pthread_attr_init(&attributes_);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes_, threadStack), 0);
    }
    void TearDown() override { pthread_attr_destroy(&attributes_); }
    void searchAll(int32_t limit) {
        for (const Deep& deep : deepest) {
            SCOPED_TRACE(deep.pattern);
            searchOnSmallStack(deep, limit, attributes_);
        }
        for (const Deep& deep : keeping) {
            SCOPED_TRACE(deep.pattern);
            searchOnSmallStack(deep, limit, attributes_);
        }
    }
    pthread_attr_t attributes_;
};

TEST_F(SmallStack, HoldsTheDeepestSearchUnderTheDefaultLimit) {
    searchAll(10000);
}

TEST_F(SmallStack, IsNotOverrunUnderRaisedLimits) {
    searchAll(100000);
    searchAll(1000000);
}

// Measured where a thread can be given a stack of our own and the sanitizers add nothing to its frames.
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
TEST(StackUse, StaysBelow256KiBUnderTheDefaultLimit) {
    void* memory = nullptr;
    ASSERT_EQ(posix_memalign(&memory, 65536, threadStack), 0);
    const std::unique_ptr<void, void (*)(void*)> owner(memory, std::free);
    uint8_t* const stack = static_cast<uint8_t*>(memory);
    for (const Deep& deep : deepest) {
        SCOPED_TRACE(deep.pattern);
        std::memset(stack, paint, threadStack);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        ASSERT_EQ(pthread_attr_setstack(&attributes, stack, threadStack), 0);
        searchOnSmallStack(deep, 10000, attributes);
        pthread_attr_destroy(&attributes);
        std::size_t untouched = 0;
        while (untouched < threadStack && stack[untouched] == paint)
            ++untouched;
        const std::size_t used = threadStack - untouched;
        EXPECT_LE(used, searchStack + 8192) << "with what the thread itself needs";
        EXPECT_GT(used, 1024u);
    }
}
#endif

} // namespace
