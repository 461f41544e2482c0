#include "driver/support/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

TEST(Text, FieldsWithoutATerminatorAreReadUpToTheirSize) {
    const char full[3] = {'a', 'b', 'c'};
    const char part[3] = {'a', 0, 'c'};
    EXPECT_EQ(FieldText(full), "abc");
    EXPECT_EQ(FieldText(part), "a");
    const WCHAR wide[2] = {'x', 'y'};
    EXPECT_EQ(FieldText(wide).size(), 2u);
}

TEST(Text, CopiesAreCutToTheFieldAndTerminated) {
    char narrow[4];
    CopyText(narrow, "abcdef");
    EXPECT_STREQ(narrow, "abc");
    CopyText(narrow, "");
    EXPECT_STREQ(narrow, "");
    WCHAR wide[3];
    CopyText(wide, L"xyz");
    EXPECT_TRUE(FieldText(wide) == L"xy");
}

TEST(Text, AMissingTextHasNoLength) {
    EXPECT_EQ(TextLength(nullptr), 0u);
}

TEST(Text, ComparesWideTextsByLengthAndContent) {
    const WideView text = L"ab";
    EXPECT_TRUE(text == WideView(L"abc", 2));
    EXPECT_FALSE(text == L"aB");
    EXPECT_FALSE(text == L"abc");
    EXPECT_TRUE(WideView() == L"");
}

TEST(Text, NarrowsAndCutsAtTheCapacity) {
    char narrow[4];
    EXPECT_EQ(NarrowText(narrow, sizeof narrow, L"abcdef"), 3u);
    EXPECT_STREQ(narrow, "abc");
    EXPECT_EQ(NarrowText(narrow, 1, L"a"), 0u);
    EXPECT_STREQ(narrow, "");
    EXPECT_EQ(NarrowText(nullptr, 0, L"a"), 0u);
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

TEST(Text, NarrowsTheTextAroundALoneSurrogate) {
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

TEST(Text, NarrowsCharacterByCharacterUntilOneDoesNotFit) {
    constexpr WCHAR kUnits[] = {'a', 0xD83D, 0xDE00, 0x20AC};
    for (int choice = 0; choice < 4 * 4 * 4 * 4; ++choice) {
        const std::vector<WCHAR> text = {kUnits[choice & 3], kUnits[choice >> 2 & 3], kUnits[choice >> 4 & 3],
                                         kUnits[choice >> 6]};
        for (size_t size = 0; size <= text.size(); ++size) {
            const std::vector<WCHAR> part(text.begin(), text.begin() + static_cast<ptrdiff_t>(size));
            std::vector<std::string> characters;
            for (size_t i = 0; i < size; ++i) {
                const bool paired = i > 0 && part[i - 1] == 0xD83D && part[i] == 0xDE00;
                char narrow[8] = {};
                WideCharToMultiByte(CP_ACP, 0, &part[paired ? i - 1 : i], paired ? 2 : 1, narrow, 7, nullptr,
                                    nullptr);
                if (paired) characters.pop_back();
                characters.emplace_back(narrow);
            }
            for (size_t capacity = 1; capacity < 16; ++capacity) {
                std::string expected;
                for (const std::string& character : characters) {
                    if (expected.size() + character.size() >= capacity) break;
                    expected += character;
                }
                std::vector<char> narrow(capacity, 'x');
                ASSERT_EQ(NarrowText(narrow.data(), capacity, {part.data(), size}), expected.size());
                ASSERT_EQ(narrow.data(), expected) << choice << " " << size << " " << capacity;
            }
        }
    }
}

TEST(Text, LeavesAFieldOfNoSizeAlone) {
    EXPECT_EQ(WidenText(nullptr, 0, "a"), 0u);
    CopyText(static_cast<char*>(nullptr), 0, "a");
    CopyText(static_cast<WCHAR*>(nullptr), 0, L"a");
}

TEST(Text, WidensAndCutsAtTheCapacity) {
    WCHAR wide[4];
    EXPECT_EQ(WidenText(wide, 4, "abcdef"), 3u);
    EXPECT_TRUE(WideView(wide, 3) == L"abc");
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(WidenText(wide, 4, "a"), 1u);
    EXPECT_TRUE(FieldText(wide) == L"a");
    EXPECT_EQ(WidenText(wide, 4, ""), 0u);
    EXPECT_EQ(wide[0], 0);
}

TEST(Text, DuplicatesOnTheHeap) {
    const HeapArray<WCHAR> copy = DuplicateText(L"label");
    EXPECT_TRUE(WideView(copy.get()) == L"label");
    const HeapArray<WCHAR> widened = DuplicateWidened("profile.zvp");
    EXPECT_TRUE(WideView(widened.get()) == L"profile.zvp");
    EXPECT_EQ(DuplicateText(nullptr), nullptr);
    EXPECT_EQ(DuplicateWidened(nullptr), nullptr);
}

namespace {

std::string Trimmed(std::string text) {
    TrimWhitespace(text.data());
    return text.c_str();
}

}  // namespace

TEST(TrimWhitespace, CutsBothEndsAndNothingInside) {
    EXPECT_EQ(Trimmed(" \t\r\n\v\fa b \t\r\n\v\f"), "a b");
    EXPECT_EQ(Trimmed("ab"), "ab");
    EXPECT_EQ(Trimmed("a"), "a");
    EXPECT_EQ(Trimmed(" a"), "a");
    EXPECT_EQ(Trimmed("a "), "a");
}

TEST(TrimWhitespace, BlanksAloneBecomeEmpty) {
    EXPECT_EQ(Trimmed(" \t\r\n"), "");
    EXPECT_EQ(Trimmed(""), "");
}

TEST(TrimWhitespace, OtherBytesStay) {
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == ' ' || (byte >= '\t' && byte <= '\r')) continue;
        const std::string text = {static_cast<char>(byte), 'x', static_cast<char>(byte)};
        EXPECT_EQ(Trimmed(text), text);
    }
}

}  // namespace orvex
