// The stand-in engine's row code: a row is encoded as the plain definition does, in no more than the
// announced size, and any code is decoded or refused as by the plain definition, without a read past its end.

#include "engine/row_encoder.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/plain/row_code.h"
#include "tools/orvexview/row_decoder.h"

namespace orvex::fuzz {

namespace {

constexpr uint32_t kMaxWidth = 600;

// Reads a row: a byte from 0 to 15 is an ink value, any other repeats the last pixel that many times.
std::vector<uint32_t> TakeRow(FuzzInput& input, uint32_t width) {
    std::vector<uint32_t> row;
    while (row.size() < width) {
        const uint8_t byte = input.Byte();
        if (byte >= 16 && !row.empty()) {
            row.resize(std::min<size_t>(width, row.size() + byte), row.back());
        } else {
            row.push_back(byte * 0x11110001u);
        }
    }
    return row;
}

// Decodes the front of `code` as the viewer does, and removes it. Returns whether it is the code of a row.
bool Decodes(std::span<const uint8_t>& code, std::vector<uint32_t>& row) {
    return tools::view::DecodeRow(code, row) == nullptr;
}

void CheckEncoder(const std::vector<uint32_t>& above, const std::vector<uint32_t>& row) {
    const auto width = static_cast<uint32_t>(row.size());
    std::vector<uint8_t> code(row_code::MaxEncodedRowSize(width));
    code.resize(EncodeRow(above.data(), row.data(), width, code.data()));
    REQUIRE(code == plain::EncodedRow(above, row));
    const std::vector<uint8_t> exact(code.begin(), code.end());
    std::span<const uint8_t> rest(exact);
    std::vector<uint32_t> decoded = above;
    REQUIRE(Decodes(rest, decoded));
    REQUIRE(rest.empty());
    REQUIRE(decoded == row);
}

}  // namespace

void FuzzRowCode(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const uint32_t width = choices.Number<uint16_t>() % kMaxWidth;
    const bool any = choices.Flag();
    const std::vector<uint32_t> above = TakeRow(choices, width);
    if (!any) {
        CheckEncoder(above, TakeRow(choices, width));
        return;
    }
    const std::span<const uint8_t> given = choices.Rest();
    const std::vector<uint8_t> exact(given.begin(), given.end());
    std::span<const uint8_t> rest(exact), plainRest(exact);
    std::vector<uint32_t> row = above;
    const std::optional<plain::InkRow> expected = plain::DecodedRow(above, plainRest);
    REQUIRE(Decodes(rest, row) == expected.has_value());
    REQUIRE(rest.data() == plainRest.data() && rest.size() == plainRest.size());
    if (!expected) return;
    REQUIRE(row == *expected);
    CheckEncoder(above, row);
}

Seeds RowCodeSeeds() {
    return {
        std::string("\x10\0\0\1\2\3\4\5\6\7\1\1\1\1\2\2\2", 17),
        std::string("\xFF\1\0\1\xF0\xF0\2\3\xFF\xFF\1\xF0\2\xFF\xFF\xFF", 16),
        std::string("\x08\0\1\1\x10\x03\x43\x01\x02\x03\x04\x82\1\2\3\4\5\6\7\x08", 20),
        std::string("\x80\0\1\1\xFF\x00\x80\0\0\0", 10),
        std::string("\x02\0\1\1\1\xC1", 6),
        std::string("\0\0\0", 3),
    };
}

}  // namespace orvex::fuzz
