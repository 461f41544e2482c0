// Files that are read, and files that appear under their names only when they are complete. All
// errors are std::runtime_error and name the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools {

// Opens a file for reading. Refuses a folder.
std::ifstream OpenFile(const std::filesystem::path& path);

// Returns a file's bytes. Refuses a folder, and a file of more than `most` bytes.
std::vector<uint8_t> ReadWholeFile(const std::filesystem::path& path, size_t most = SIZE_MAX);
std::string ReadWholeText(const std::filesystem::path& path);

class OutputFile {
  public:
    // Creates a temporary file beside `path`, which takes all writes.
    explicit OutputFile(std::filesystem::path path);
    // Removes the temporary file unless it was completed; an earlier file of the name is untouched then.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Returns whether the bytes were written. After one failure all further writes fail.
    bool Write(std::string_view bytes);
    uint64_t Size() const { return size_; }

    // Renames the file, replacing an earlier one; on failure changes nothing.
    void Complete();

  private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream file_;
    uint64_t size_ = 0;
    bool completed_ = false;
};

// Write a whole file that way.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);
void WriteWholeFile(const std::filesystem::path& path, std::span<const uint8_t> bytes);

}  // namespace orvex::tools
