// Every vector operation against the same operation on single elements.
#include "base/vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

template <class E>
class VectorTest : public ::testing::Test {
protected:
    using V = tav::Vector<E>;

    std::mt19937 random{12345};

    /// Values that cluster around the boundaries where signed and unsigned comparison differ.
    E element() {
        static constexpr unsigned corners[] = {0, 1, 0x7F, 0x80, 0xFF, 0x100, 0x7FFF, 0x8000, 0xFFFF};
        const unsigned pick = static_cast<unsigned>(random());
        return static_cast<E>(pick % 3 != 0 ? corners[(pick >> 8) % 9] : pick >> 8);
    }

    void fill(E* to) {
        std::generate_n(to, V::size, [this] { return element(); });
    }

    template <class Operation, class Rule>
    void holdsForEveryLane(Operation operation, Rule rule) {
        for (int round = 0; round < 500; ++round) {
            E a[V::size], b[V::size], got[V::size];
            fill(a);
            fill(b);
            operation(V::load(a), V::load(b)).store(got);
            for (int i = 0; i < V::size; ++i) {
                ASSERT_EQ(got[i], static_cast<E>(rule(a[i], b[i]))) << +a[i] << " and " << +b[i];
            }
        }
    }
};

using Elements = ::testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(VectorTest, Elements);

template <class E>
constexpr E truth(bool holds) {
    return static_cast<E>(holds ? -1 : 0);
}

} // namespace

TYPED_TEST(VectorTest, ArithmeticActsOnEachLaneAlone) {
    using V = tav::Vector<TypeParam>;
    this->holdsForEveryLane([](V a, V b) { return a + b; }, [](int a, int b) { return a + b; });
    this->holdsForEveryLane([](V a, V b) { return a - b; }, [](int a, int b) { return a - b; });
    this->holdsForEveryLane([](V a, V b) { return a.minusSaturated(b); },
                            [](int a, int b) { return std::max(a - b, 0); });
}

TYPED_TEST(VectorTest, BitOperationsActOnEachLaneAlone) {
    using V = tav::Vector<TypeParam>;
    this->holdsForEveryLane([](V a, V b) { return a & b; }, [](int a, int b) { return a & b; });
    this->holdsForEveryLane([](V a, V b) { return a | b; }, [](int a, int b) { return a | b; });
    this->holdsForEveryLane([](V a, V b) { return a ^ b; }, [](int a, int b) { return a ^ b; });
    this->holdsForEveryLane([](V a, V b) { return a.without(b); }, [](int a, int b) { return a & ~b; });
}

TYPED_TEST(VectorTest, ComparisonsAreUnsigned) {
    using E = TypeParam;
    using V = tav::Vector<E>;
    this->holdsForEveryLane([](V a, V b) { return a.min(b); }, [](E a, E b) { return std::min(a, b); });
    this->holdsForEveryLane([](V a, V b) { return a.max(b); }, [](E a, E b) { return std::max(a, b); });
    this->holdsForEveryLane([](V a, V b) { return a.equal(b); }, [](E a, E b) { return truth<E>(a == b); });
    this->holdsForEveryLane([](V a, V b) { return a.atMost(b); }, [](E a, E b) { return truth<E>(a <= b); });
}

TYPED_TEST(VectorTest, ARangeContainsItsTwoEndsAndNothingOutside) {
    using E = TypeParam;
    using V = tav::Vector<E>;
    for (int round = 0; round < 200; ++round) {
        const E one = this->element(), two = this->element();
        const E low = std::min(one, two), high = std::max(one, two);
        const tav::VectorRange<E> range(low, high);
        this->holdsForEveryLane([&](V a, V) { return range.contains(a); },
                                [&](E a, E) { return truth<E>(low <= a && a <= high); });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(VectorTest, APartialRangeMayGoOnFromTheGreatestValue) {
    using E = TypeParam;
    using V = tav::Vector<E>;
    for (int round = 0; round < 400; ++round) {
        const E from = this->element(), to = this->element();
        if (static_cast<E>(to + 1) == from) continue; // all values
        const tav::PartialRange<E> range(from, to);
        this->holdsForEveryLane(
            [&](V a, V) { return range.contains(a); },
            [&](E a, E) { return truth<E>(static_cast<E>(a - from) <= static_cast<E>(to - from)); });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(VectorTest, AMaskNamesItsLanes) {
    using E = TypeParam;
    using V = tav::Vector<E>;
    for (uint32_t pattern = 0; pattern < (1U << V::size); pattern += 1 + pattern / 64) {
        E lanes[V::size];
        for (int i = 0; i < V::size; ++i) {
            lanes[i] = truth<E>((pattern >> i & 1) != 0);
        }
        const tav::LaneMask<E> mask = V::load(lanes).lanes();
        ASSERT_EQ(mask.any(), pattern != 0);
        ASSERT_EQ(mask.all(), pattern == (1U << V::size) - 1);
        ASSERT_EQ(mask.inverse().any(), !mask.all());
        for (int i = 0; i <= V::size; ++i) {
            ASSERT_EQ(mask.from(i).any(), pattern >> i != 0);
            ASSERT_EQ(mask.below(i).any(), (pattern & ((1U << i) - 1)) != 0);
        }
        if (pattern == 0) continue;
        ASSERT_EQ(mask.first(), std::countr_zero(pattern));
        ASSERT_EQ(mask.last(), 31 - std::countl_zero(pattern));
        ASSERT_FALSE((mask.withoutFirst().below(mask.first() + 1)).any());
        ASSERT_EQ(std::popcount(mask.withoutFirst().bits),
                  std::popcount(mask.bits) - static_cast<int>(sizeof(E)));
        ASSERT_FALSE((mask.withoutLast().from(mask.last())).any());
        ASSERT_EQ(std::popcount(mask.withoutLast().bits),
                  std::popcount(mask.bits) - static_cast<int>(sizeof(E)));
    }
}
