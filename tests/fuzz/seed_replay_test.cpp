#include <gtest/gtest.h>

#include <random>
#include <set>

#include "fuzz/target.h"

namespace orvex::fuzz {

namespace {

std::span<const uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// A broken invariant ends the program with its message.
class FuzzedFunction : public testing::TestWithParam<FuzzTarget> {};

}  // namespace

TEST_P(FuzzedFunction, HoldsItsInvariantOverEverySeed) {
    const Seeds seeds = GetParam().seeds();
    EXPECT_GE(seeds.size(), 4u);
    for (const std::string& seed : seeds) GetParam().run(Bytes(seed));
}

TEST_P(FuzzedFunction, HoldsItsInvariantOverNothingAndOverEverySeedCutShort) {
    GetParam().run({});
    for (const std::string& seed : GetParam().seeds()) {
        const size_t step = seed.size() / 8 + 1;
        for (size_t size = 1; size < seed.size(); size += step) GetParam().run(Bytes(seed.substr(0, size)));
    }
}

TEST_P(FuzzedFunction, HoldsItsInvariantOverSeedsWithChangedBytes) {
    std::mt19937 random(20);
    for (const std::string& seed : GetParam().seeds()) {
        for (int i = 0; i < 4; ++i) {
            std::string changed = seed;
            // The first byte chooses what is done; it stays.
            for (size_t at = 1 + random() % 8; at < changed.size(); at += 1 + random() % 64) {
                changed[at] = static_cast<char>(random());
            }
            GetParam().run(Bytes(changed));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, FuzzedFunction, testing::ValuesIn(FuzzTargets().begin(), FuzzTargets().end()),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(FuzzTargets, AreFoundByTheirNames) {
    std::set<std::string> names;
    for (const FuzzTarget& target : FuzzTargets()) {
        EXPECT_TRUE(names.insert(target.name).second) << target.name;
        EXPECT_EQ(FindFuzzTarget(target.name), &target);
    }
    EXPECT_EQ(FindFuzzTarget("no such target"), nullptr);
}

TEST(FuzzTargetsDeathTest, EndTheProgramWithTheInvariantThatIsBroken) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(REQUIRE(1 + 1 == 3), "invariant broken: 1 \\+ 1 == 3");
}

}  // namespace orvex::fuzz
