// The guards that other tests rely on: they are where they should be and they bite.
#include "base/guarded_buffer.h"

#include <gtest/gtest.h>

using tavtest::GuardedBuffer;

TEST(GuardedBuffer, HeadAndTailHoldTheWholeCapacity) {
    GuardedBuffer<uint16_t> buffer(5000);
    for (std::size_t i = 0; i < buffer.capacity(); ++i) {
        buffer.head()[i] = 7;
        buffer.tail(buffer.capacity())[i] = 9;
    }
    EXPECT_EQ(buffer.tail(1)[0], 9);
    EXPECT_LE(buffer.head() + buffer.capacity(), buffer.tail(0));
}

TEST(GuardedBuffer, ACopyToEitherEndIsTheCopy) {
    GuardedBuffer<uint8_t> buffer(3);
    const uint8_t text[] = {1, 2, 3};
    EXPECT_EQ(std::memcmp(buffer.copyToTail(text, 3), text, 3), 0);
    EXPECT_EQ(std::memcmp(buffer.copyToHead(text, 3), text, 3), 0);
    EXPECT_EQ(buffer.copyToTail(nullptr, 0), buffer.tail(0));
}

#if GTEST_HAS_DEATH_TEST && !defined(_WIN32)
TEST(GuardedBufferDeathTest, OneByteOutsideEitherEndEndsTheProgram) {
    GuardedBuffer<uint8_t> buffer(100);
    EXPECT_DEATH(*static_cast<volatile uint8_t*>(buffer.tail(0)) = 1, "");
    EXPECT_DEATH(*static_cast<volatile uint8_t*>(buffer.head() - 1) = 1, "");
}
#endif
