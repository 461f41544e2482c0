// Writers that fill the driver's log together, and the text of their lines.
#pragma once

#include <cstdint>
#include <string>

#include "tests/system/endurance/helper/turn_book.h"
#include "tools/host/driver_library.h"

namespace orvex {

using namespace tools;
// Writers are numbered from here on. No line's number gets here: the driver has nothing to say of a field
// that a reset leaves as it is, so a writer must never write the line that has its own number.
constexpr uint32_t kFirstWriter = 1'000'000'000;

// What a writer's line says behind its time, thread and level. Every other one is too long for one write to
// the file.
std::string WriterText(Turn turn);

// Lets `writers` writers, numbered from `firstWriter` on, write lines to the driver's log until the book says
// stop. Each writes in bursts of some lines on threads of their own, since a thread that keeps on writing
// keeps the mutex. Another thread rereads the log's switch all the time, as job starts do.
void WriteUntilStopped(const DriverLibrary& driver, TurnBook& book, uint32_t firstWriter, uint32_t writers);

}  // namespace orvex
