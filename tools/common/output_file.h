// A file that appears under its name only when it is complete.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace orvex::tools {

class OutputFile {
  public:
    // Writes go to a temporary file beside `path`. Throws std::runtime_error when that can't be made.
    explicit OutputFile(std::filesystem::path path);
    // Removes what was not completed; a file that stood under the name before is still there.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // False when the bytes could not be written; so is every write after that.
    bool Write(std::string_view bytes);
    // Bytes written so far.
    uint64_t Size() const { return size_; }

    // Gives the file its name, in place of what stood there. Throws std::runtime_error; nothing is changed
    // then.
    void Complete();

  private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream file_;
    uint64_t size_ = 0;
    bool completed_ = false;
};

// Writes a whole file that way. Throws std::runtime_error.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace orvex::tools
