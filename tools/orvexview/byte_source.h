// The source of a print file's bytes: memory, or a file of any length of which one window is in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace orvex::tools::view {

class ByteSource {
  public:
    ByteSource() = default;
    virtual ~ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    // Returns `size` bytes from the offset on, fewer where the source ends before; valid until the next call.
    virtual std::span<const uint8_t> At(uint64_t offset, size_t size) = 0;
    // Returns the number of bytes that there are.
    virtual uint64_t Size() = 0;
};

class MemorySource : public ByteSource {
  public:
    explicit MemorySource(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

    std::span<const uint8_t> At(uint64_t offset, size_t size) override;
    uint64_t Size() override { return bytes_.size(); }

  private:
    std::vector<uint8_t> bytes_;
};

class FileSource : public ByteSource {
  public:
    // Opens a file. Throws std::runtime_error that names it and says why it can't be read; a pipe can't be
    // read twice, as the pages of a print file are.
    explicit FileSource(const std::filesystem::path& path);

    std::span<const uint8_t> At(uint64_t offset, size_t size) override;
    uint64_t Size() override;

  private:
    void Load(uint64_t offset, size_t size);

    std::string name_;
    std::ifstream file_;
    std::vector<uint8_t> window_;
    uint64_t start_ = 0;  // of the window
};

}  // namespace orvex::tools::view
