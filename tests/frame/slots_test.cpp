// The table behind the exports: one filled slot per function, and every entry goes through its slot.
#include "frame/export_list.h"
#include "frame/slots.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string_view>

using namespace tav::test;

namespace {

using Slots = std::array<void*, tav::exportCount>;

Slots slots() {
    Slots copy;
    static_assert(sizeof(copy) == sizeof(tav::exportSlots));
    std::memcpy(copy.data(), &tav::exportSlots, sizeof(copy));
    return copy;
}

bool isListed(std::size_t ordinal) {
    for (const Export& entry : exportList)
        if (static_cast<std::size_t>(entry.ordinal) == ordinal) return true;
    return false;
}

void* slotOf(std::string_view name) {
    for (const Export& entry : exportList)
        if (entry.name == name) return slots()[static_cast<std::size_t>(entry.ordinal - 1)];
    return nullptr;
}

const tavVersionRecord otherRecord = {};

const tavVersionRecord* otherImplementation() {
    return &otherRecord;
}

} // namespace

TEST(Slots, SlotIServesOrdinalIPlusOneAndVacantOnesAreNull) {
    const Slots all = slots();
    for (std::size_t i = 0; i < all.size(); i++)
        EXPECT_EQ(all[i] != nullptr, isListed(i + 1)) << "ordinal " << i + 1;
}

TEST(Slots, AnEntryGoesThroughItsSlotAtEveryCall) {
    const auto own = tav::exportSlots.tavchGetLibVersion;
    tav::exportSlots.tavchGetLibVersion = otherImplementation;
    EXPECT_EQ(tavchGetLibVersion(), &otherRecord);
    tav::exportSlots.tavchGetLibVersion = own;
    EXPECT_NE(tavchGetLibVersion(), &otherRecord);
}

TEST(Slots, BothWaysToFreeAnObjectShareOneImplementation) {
    if (slotOf("tavsRegExpFree") == nullptr || slotOf("tavsRegExpMultiFree") == nullptr)
        GTEST_SKIP() << "not both exported yet";
    EXPECT_EQ(slotOf("tavsRegExpFree"), slotOf("tavsRegExpMultiFree"));
}
