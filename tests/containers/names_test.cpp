// Names of variables and fields.
#include <ox.h>
#include <support/expect.h>
#include <support/host.h>
#include <ut.h>

using namespace ox::test;

namespace {

using VelNames = HostTest;

TEST_F(VelNames, ALetterThenLettersDigitsAndUnderscores) {
    for (const char *good : {"a", "a_1", "Z9", "a__"}) EXPECT_TRUE(oxIsValidVelName(good)) << good;
    for (const char *bad : {"", "1a", "_a", "a b", "a-", "\xE9", "a\xC3\xA9", "a\x80"})
        EXPECT_FALSE(oxIsValidVelName(bad)) << bad;
    EXPECT_TRUE(oxIsValidVelName(std::string(100, 'x').c_str()));
    EXPECT_TRUE(oxIsValidVelNamePart("ab c", 2));
    EXPECT_FALSE(oxIsValidVelNamePart("ab c", 3));
    EXPECT_TRUE(oxIsValidVelNamePart("a", 0)); // still looks at the first byte
    EXPECT_FALSE(oxIsValidVelNamePart("1", 0));
}

TEST_F(VelNames, LongNamesAreCutWithAWarning) {
    std::string fits(63, 'x'), longer = fits + "yz";
    bool cut = true;
    EXPECT_NO_WARNING(cut = oxTruncateVelName(fits.data()));
    EXPECT_FALSE(cut);
    EXPECT_WARNS("VELTRO:namelengthmaxexceeded",
                 "'" + longer +
                     "'\n exceeds VELTRO's maximum name length of 63 characters and has "
                     "been truncated to\n '" +
                     fits + "'.",
                 cut = oxTruncateVelName(longer.data()));
    EXPECT_TRUE(cut);
    EXPECT_STREQ(longer.c_str(), fits.c_str());
}

TEST_F(VelNames, AWarningThatIsAnErrorLeavesTheNameWhole) {
    std::string name(64, 'x');
    utSetWarningStatus(utGetWarningManagerContext(), "VELTRO:namelengthmaxexceeded", 2);
    EXPECT_RAISES("VELTRO:namelengthmaxexceeded", nullptr, oxTruncateVelName(name.data()));
    EXPECT_EQ(std::string(name.c_str()).size(), 64u);
}

} // namespace
