#include "driver/render/base64.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orvex {

namespace {

std::string Encode(std::string_view text) {
    const std::vector<uint8_t> bytes(text.begin(), text.end());  // a sanitizer sees reads past the end
    size_t length = 999;
    const HeapArray<char> encoded = EncodeBase64(bytes.data(), bytes.size(), &length);
    EXPECT_EQ(length, strlen(encoded.get()));
    return encoded.get();
}

}  // namespace

TEST(Base64, EncodesTheKnownAnswers) {
    EXPECT_EQ(Encode(""), "");
    EXPECT_EQ(Encode("f"), "Zg==");
    EXPECT_EQ(Encode("fo"), "Zm8=");
    EXPECT_EQ(Encode("foo"), "Zm9v");
    EXPECT_EQ(Encode("foob"), "Zm9vYg==");
    EXPECT_EQ(Encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(Encode("foobar"), "Zm9vYmFy");
}

TEST(Base64, UsesTheWholeAlphabet) {
    std::string bytes;
    for (int i = 0; i < 64; i += 4) {
        bytes += static_cast<char>(i << 2 | (i + 1) >> 4);
        bytes += static_cast<char>((i + 1) << 4 | (i + 2) >> 2);
        bytes += static_cast<char>((i + 2) << 6 | (i + 3));
    }
    EXPECT_EQ(Encode(bytes), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(Base64, RefusesASizeWhoseTextCannotBeExpressed) {
    size_t length = 7;
    EXPECT_EQ(EncodeBase64(nullptr, SIZE_MAX / 4 + 1, &length), nullptr);
    EXPECT_EQ(length, 7u);
}

}  // namespace orvex
