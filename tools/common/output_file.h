// Files that appear under their names only when they are complete.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

namespace orvex::tools {

class OutputFile {
  public:
    // Creates a temporary file beside `path`, which takes all writes. Throws std::runtime_error.
    explicit OutputFile(std::filesystem::path path);
    // Removes the temporary file unless it was completed; an earlier file of the name is untouched then.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Returns whether the bytes were written. After one failure all further writes fail.
    bool Write(std::string_view bytes);
    uint64_t Size() const { return size_; }

    // Renames the file, replacing an earlier one. Throws std::runtime_error, and then changes nothing.
    void Complete();

  private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream file_;
    uint64_t size_ = 0;
    bool completed_ = false;
};

// Writes a whole file that way. Throws std::runtime_error that names it.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);
void WriteWholeFile(const std::filesystem::path& path, std::span<const uint8_t> bytes);

}  // namespace orvex::tools
