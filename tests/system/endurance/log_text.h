// The text of a log that was written under load.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/system/endurance/helper/turn_book.h"

namespace orvex {

constexpr uintmax_t kMaxLogBytes = 104857600;

// Makes the log one byte longer than its limit, with a hole, while others write to it.
void GrowPastLimit(const std::filesystem::path& log);

// Returns the text of a log, without the hole of a grown one.
std::string ReadGrownLog(const std::filesystem::path& log);

// Returns the writers' lines, in order. All other lines, and broken ones, go to `strangers`.
std::vector<Turn> ReadTurns(std::string_view text, std::vector<std::string>& strangers);

}  // namespace orvex
