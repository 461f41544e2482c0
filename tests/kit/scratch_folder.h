// A folder of a test's own, removed with all that is in it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orvex {

class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    // Writes a file below the folder, its folders included, and returns its path.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view bytes) const;

  private:
    std::filesystem::path path_;
};

// The whole file as bytes; empty when it can't be read.
std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, std::string_view bytes);

}  // namespace orvex
