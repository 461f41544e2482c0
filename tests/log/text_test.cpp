#include "support/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

TEST(Text, FieldsWithoutATerminatorAreReadUpToTheirSize) {
    const char full[3] = {'a', 'b', 'c'};
    const char part[3] = {'a', 0, 'c'};
    EXPECT_EQ(FieldText(full), "abc");
    EXPECT_EQ(FieldText(part), "a");
    const WCHAR wide[2] = {'x', 'y'};
    EXPECT_EQ(FieldText(wide).size, 2u);
}

TEST(Text, CopiesAreCutToTheFieldAndTerminated) {
    char narrow[4];
    CopyText(narrow, "abcdef");
    EXPECT_STREQ(narrow, "abc");
    CopyText(narrow, "");
    EXPECT_STREQ(narrow, "");
    WCHAR wide[3];
    CopyText(wide, WideView{L"xyz", 3});
    EXPECT_TRUE(SameText(FieldText(wide), WideView{L"xy", 2}));
}

TEST(Text, AMissingTextHasNoLength) {
    EXPECT_EQ(TextLength(nullptr), 0u);
}

TEST(Text, ComparesWideTextsByLengthAndContent) {
    EXPECT_TRUE(SameText({L"ab", 2}, {L"ab", 2}));
    EXPECT_FALSE(SameText({L"ab", 2}, {L"aB", 2}));
    EXPECT_FALSE(SameText({L"ab", 2}, {L"abc", 3}));
    EXPECT_TRUE(SameText({}, {L"", 0}));
}

TEST(Text, NarrowsAndCutsAtTheCapacity) {
    char narrow[4];
    EXPECT_EQ(NarrowText(narrow, sizeof narrow, {L"abcdef", 6}), 3u);
    EXPECT_STREQ(narrow, "abc");
    EXPECT_EQ(NarrowText(narrow, 1, {L"a", 1}), 0u);
    EXPECT_STREQ(narrow, "");
    EXPECT_EQ(NarrowText(nullptr, 0, {L"a", 1}), 0u);
}

TEST(Text, NarrowsASurrogatePairAsOneCharacterOrNotAtAll) {
    const WCHAR text[] = {'a', 0xD83D, 0xDE00, 'b'};
    char pair[8] = {};
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text + 1, 2, pair, sizeof pair, nullptr, nullptr);
    ASSERT_GT(bytes, 0);
    char narrow[16];
    NarrowText(narrow, sizeof narrow, {text, 4});
    EXPECT_EQ(narrow, "a" + std::string(pair) + "b");
    EXPECT_EQ(NarrowText(narrow, static_cast<size_t>(1 + bytes), {text, 4}), 1u);
    EXPECT_STREQ(narrow, "a");
}

TEST(Text, NarrowsWhatStandsAroundALoneSurrogate) {
    const WCHAR atTheEnd[] = {'a', 0xD83D};
    const WCHAR beforeAnother[] = {'a', 0xD83D, 'b'};
    const WCHAR low[] = {'a', 0xDE00, 0xFFFD};
    char narrow[16];
    NarrowText(narrow, sizeof narrow, {atTheEnd, 2});
    EXPECT_EQ(narrow[0], 'a');
    NarrowText(narrow, sizeof narrow, {beforeAnother, 3});
    EXPECT_TRUE(std::string_view(narrow).starts_with('a') && std::string_view(narrow).ends_with('b'));
    NarrowText(narrow, sizeof narrow, {low, 3});
    EXPECT_EQ(narrow[0], 'a');
}

TEST(Text, LeavesAFieldOfNoSizeAlone) {
    EXPECT_EQ(WidenText(nullptr, 0, "a"), 0u);
    CopyText(static_cast<char*>(nullptr), 0, "a");
    CopyText(static_cast<WCHAR*>(nullptr), 0, {L"a", 1});
}

TEST(Text, WidensAndCutsAtTheCapacity) {
    WCHAR wide[4];
    EXPECT_EQ(WidenText(wide, 4, "abcdef"), 3u);
    EXPECT_TRUE(SameText({wide, 3}, {L"abc", 3}));
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(WidenText(wide, 4, ""), 0u);
    EXPECT_EQ(wide[0], 0);
}

TEST(Text, DuplicatesOnTheHeap) {
    const HeapArray<WCHAR> copy = DuplicateText(L"label");
    EXPECT_TRUE(SameText({copy.get(), TextLength(copy.get())}, {L"label", 5}));
    const HeapArray<WCHAR> widened = DuplicateWidened("profile.zvp");
    EXPECT_TRUE(SameText({widened.get(), TextLength(widened.get())}, {L"profile.zvp", 11}));
    EXPECT_EQ(DuplicateText(nullptr), nullptr);
    EXPECT_EQ(DuplicateWidened(nullptr), nullptr);
}
