// A test's own folder, removed with all its contents.
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
    // Writes a file below the folder, creating its folders, and returns its path.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view bytes) const;

  private:
    std::filesystem::path path_;
};

// Returns the whole file; empty if it can't be read.
std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, std::string_view bytes);

}  // namespace orvex
