// The text of a log that was written under load.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/system/endurance/helper/turn_book.h"

namespace orvex {

constexpr uintmax_t kMaxLogBytes = 104857600;

// Makes the log one byte longer than it may be, with a hole, while others write to it.
void GrowPastLimit(const std::filesystem::path& log);

// All that a log says, without the hole of a grown one.
std::string ReadGrownLog(const std::filesystem::path& log);

// The writers' lines, in order. Whatever else stands there, broken lines among them, goes to `strangers`.
std::vector<Turn> ReadTurns(std::string_view text, std::vector<std::string>& strangers);

}  // namespace orvex
