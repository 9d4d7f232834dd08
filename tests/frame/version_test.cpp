// The version query: one constant record with the stated fields.
#include "tavch.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(Version, TheRecordDescribesThisBuild) {
    const tavVersionRecord* version = tavchGetLibVersion();
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version->versionMajor, 8);
    EXPECT_EQ(version->versionMinor, 2);
    EXPECT_EQ(version->versionPatch, 3);
    EXPECT_EQ(version->buildNumber, 48108);
    EXPECT_EQ(std::memcmp(version->cpuVariant, "mx\0", 4), 0);
    EXPECT_STREQ(version->libraryName, "tavCH PX (mx)");
    EXPECT_STREQ(version->versionText, "8.2.3 (r48108)");
    EXPECT_STREQ(version->buildDate, "Jul 23 2015");
}

TEST(Version, EveryCallReturnsTheSameRecord) {
    EXPECT_EQ(tavchGetLibVersion(), tavchGetLibVersion());
}
