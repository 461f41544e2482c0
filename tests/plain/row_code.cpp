#include "tests/plain/row_code.h"

namespace orvex::plain {

namespace {

// The two upper bits of a command.
constexpr int kAbove = 0, kRun = 1, kLiterals = 2;

void PutNumber(std::vector<uint8_t>& code, uint32_t number) {
    for (int byte = 0; byte < 4; ++byte) code.push_back(static_cast<uint8_t>(number >> 8 * byte & 0xFF));
}

void PutCommand(std::vector<uint8_t>& code, int command, size_t count) {
    code.push_back(static_cast<uint8_t>(command * 64 + static_cast<int>(count <= 63 ? count : 0)));
    if (count > 63) PutNumber(code, static_cast<uint32_t>(count));
}

// Takes a number off the front. Returns nothing if there are fewer than four bytes.
std::optional<uint32_t> TakeNumber(std::span<const uint8_t>& code) {
    if (code.size() < 4) return std::nullopt;
    const uint32_t number = code[0] + code[1] * 0x100u + code[2] * 0x10000u + code[3] * 0x1000000u;
    code = code.subspan(4);
    return number;
}

// Decodes one command and appends its pixels. Returns false if the code is wrong.
bool TakeCommand(std::span<const uint8_t>& code, const InkRow& above, InkRow& row) {
    if (code.empty()) return false;
    const int command = code[0] / 64;
    std::optional<uint32_t> count = code[0] % 64;
    code = code.subspan(1);
    if (count == 0u) count = TakeNumber(code);
    if (!count || *count == 0 || *count > above.size() - row.size() || command > kLiterals) return false;
    std::optional<uint32_t> ink;
    for (uint32_t i = 0; i < *count; ++i) {
        if (command == kLiterals || (command == kRun && i == 0)) ink = TakeNumber(code);
        if (command == kAbove) ink = above[row.size()];
        if (!ink) return false;
        row.push_back(*ink);
    }
    return true;
}

}  // namespace

std::vector<uint8_t> EncodedRow(const InkRow& above, const InkRow& row) {
    std::vector<uint8_t> code;
    InkRow literals;
    const auto putLiterals = [&] {
        if (!literals.empty()) PutCommand(code, kLiterals, literals.size());
        for (const uint32_t ink : literals) PutNumber(code, ink);
        literals.clear();
    };
    for (size_t at = 0; at < row.size();) {
        size_t same = 0, run = 0;
        while (at + same < row.size() && row[at + same] == above[at + same]) ++same;
        while (at + run < row.size() && row[at + run] == row[at]) ++run;
        if (same >= 2 && same >= run) {
            putLiterals();
            PutCommand(code, kAbove, same);
            at += same;
        } else if (run >= 3) {
            putLiterals();
            PutCommand(code, kRun, run);
            PutNumber(code, row[at]);
            at += run;
        } else {
            literals.push_back(row[at]);
            ++at;
        }
    }
    putLiterals();
    return code;
}

std::optional<InkRow> DecodedRow(const InkRow& above, std::span<const uint8_t>& code) {
    InkRow row;
    while (row.size() < above.size()) {
        std::span<const uint8_t> rest = code;
        if (!TakeCommand(rest, above, row)) return std::nullopt;
        code = rest;
    }
    return row;
}

}  // namespace orvex::plain
