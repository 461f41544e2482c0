// Collects the stand-in engine's output, and prints small jobs.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "engine/hpcrlib.h"
#include "engine/print_stream.h"

namespace orvex {

inline constexpr uint32_t kMode300Dpi = 0;
inline constexpr uint32_t kMode600Dpi = 1;

using Rows = std::vector<std::vector<uint32_t>>;

// The output callback and its context: keeps every chunk, and fails from one chunk on.
struct EngineOutput {
    std::vector<std::string> chunks;
    size_t failFrom = SIZE_MAX;
    std::function<void()> during;  // called within the callback

    static int32_t HPCRLIB_CALL Take(const uint8_t* data, uint32_t length, void* context) {
        auto& output = *static_cast<EngineOutput*>(context);
        if (output.during) output.during();
        if (output.chunks.size() >= output.failFrom) return 0;
        output.chunks.emplace_back(reinterpret_cast<const char*>(data), length);
        return 1;
    }

    uint64_t StartJob(uint32_t mode = kMode600Dpi) { return HPCRLIB_JobStart(&Take, this, mode, 0); }

    // Returns the print file: every chunk but the framing.
    std::string File() const {
        std::string file;
        for (size_t i = 1; i < chunks.size(); ++i) file += chunks[i];
        return file;
    }
};

// Starts a page at 600 dpi with room for a block of that size at its top.
inline uint32_t StartFittingPage(uint64_t job, uint32_t rowWidth, uint32_t rows) {
    return HPCRLIB_PageStart(job, 12 * rowWidth + 2400, 12 * rows + 2400);
}

// Prints one page of these rows, all of one width, and returns whether every call succeeded. Announces
// `announced` rows; 0 announces as many as it prints.
inline bool PrintPage(uint64_t job, const Rows& rows, uint32_t top = 0, size_t announced = 0) {
    const auto count = static_cast<uint32_t>(announced != 0 ? announced : rows.size());
    const auto width = static_cast<uint32_t>(rows[0].size());
    bool good = HPCRLIB_PageStart(job, 24 * width + 2400, print_stream::kFullPageLength) == 1 &&
                HPCRLIB_RasterBlockStart(job, 0, top, width, count) == 1;
    for (const std::vector<uint32_t>& row : rows) good = good && HPCRLIB_RasterRow(job, row.data()) == 1;
    return good && HPCRLIB_RasterBlockEnd(job) == 1 && HPCRLIB_PageEnd(job) == 1;
}

// Returns the output of a job of these pages.
inline EngineOutput PrintJob(const std::vector<Rows>& pages, uint32_t mode = kMode600Dpi) {
    EngineOutput output;
    const uint64_t job = output.StartJob(mode);
    for (const Rows& page : pages) PrintPage(job, page);
    HPCRLIB_JobEnd(job);
    return output;
}

inline std::string Number(uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

// Returns the Adler-32 checksum by its definition: two sums modulo 65521, byte by byte.
inline uint32_t Checksum(const std::string& bytes) {
    uint64_t a = 1;
    uint64_t b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<uint8_t>(byte)) % 65521;
        b = (b + a) % 65521;
    }
    return static_cast<uint32_t>(b << 16 | a);
}

// Return a record with a correct checksum, whatever its payload.
inline std::string MakeRecord(char type, const std::string& payload) {
    const std::string record = type + Number(static_cast<uint32_t>(payload.size())) + payload;
    return record + Number(Checksum(record));
}
inline std::string MakeRecord(char type, std::initializer_list<uint32_t> numbers) {
    std::string payload;
    for (const uint32_t number : numbers) payload += Number(number);
    return MakeRecord(type, payload);
}

}  // namespace orvex
