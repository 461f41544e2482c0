// PNG files that are written line by line, so that a picture of any size takes little memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "tools/common/picture.h"
#include "tools/common/whole_file.h"

namespace orvex::tools::view {

// Returns whether a file is a picture that a PngWriter has made, by the text near its beginning that says so.
bool IsWrittenPicture(const std::filesystem::path& path);

class PngWriter {
  public:
    // Creates a file for a picture of 1 or 3 channels that states its resolution. Throws std::runtime_error.
    PngWriter(const std::filesystem::path& path, uint32_t width, uint32_t height, uint32_t channels,
              double pixelsPerInch);
    // Leaves no file unless it was completed.
    ~PngWriter();
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    // Adds the lines of a picture of the same width and channels. Throws std::runtime_error.
    void TakeLines(const Picture& lines);
    // Ends the file after its last line; only then it appears under its name. Throws std::runtime_error.
    void Complete();

  private:
    struct Deflater;

    std::span<const uint8_t> Filtered(std::span<const uint8_t> line);
    void Compress(std::span<const uint8_t> bytes, bool last);
    void WriteChunk(std::string_view type, std::span<const uint8_t> data);
    void Write(std::span<const uint8_t> bytes);

    OutputFile file_;
    std::unique_ptr<Deflater> deflater_;
    uint32_t channels_;
    std::vector<uint8_t> above_;                    // the line before
    std::vector<uint8_t> repeated_;                 // a line that is the same as the one before, filtered
    std::vector<std::vector<uint8_t>> candidates_;  // the line in each filter, after the filter's number
    std::vector<uint8_t> compressed_;               // the data of a chunk
};

}  // namespace orvex::tools::view
