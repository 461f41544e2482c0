// Writers that fill the driver's log concurrently, and the text of their lines.
#pragma once

#include <cstdint>
#include <string>

#include "tests/system/endurance/helper/turn_book.h"
#include "tools/host/driver_library.h"

namespace orvex {

// The first writer's number, larger than any line's: the driver logs nothing for a field that a reset leaves
// unchanged, so no line may have the number of its writer.
constexpr uint32_t kFirstWriter = 1'000'000'000;

// Returns the text of a line after time, thread and level. Every second line is too long for one write to the
// file.
std::string WriterText(Turn turn);

// Has `writers` writers, numbered from `firstWriter`, write lines to the driver's log until the book says
// stop. Each burst of lines has a thread of its own, since a thread that goes on writing keeps the mutex.
// Another thread rereads the log's switch continually, as starting jobs do.
void WriteUntilStopped(const tools::DriverLibrary& driver, TurnBook& book, uint32_t firstWriter,
                       uint32_t writers);

}  // namespace orvex
