// Files that are read, files that appear under their names only when they are complete, and the check
// that none of them is written over another. All errors are std::runtime_error, name the file and say why.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/interrupt.h"

namespace orvex::tools {

// Return whether a name means standard input, or standard output: "-", or the system's own name.
// Under Wine those names would be the streams of its server.
bool IsStandardInput(const std::filesystem::path& path);
bool IsStandardOutput(const std::filesystem::path& path);

// Opens a file for reading. Refuses a folder.
std::unique_ptr<std::istream> OpenFile(const std::filesystem::path& path);

// Returns a file's bytes. Refuses a folder, and a file of more than `most` bytes. Standard input is read
// once; every further call returns the same bytes.
std::vector<uint8_t> ReadWholeFile(const std::filesystem::path& path, size_t most = SIZE_MAX);
std::string ReadWholeText(const std::filesystem::path& path);

// Throws, with the same words as the reading would, if a file can't be opened for it.
void CheckReadable(const std::filesystem::path& path);

// Returns the reason for a failed call, in words, from its errno: "permission denied".
std::string FileReason(int error);

// A file of the command line with its part there: "-o", "the page".
struct NamedFile {
    std::string role;
    std::filesystem::path path;
};

// Two names that mean one file, of which one is to be written.
class FileClash : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns whether both names are one regular file, by its identity; of files that do not exist yet, by their
// folder and name.
bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// Throws FileClash if an output is also an input or another output. Opens nothing. Empty paths count for
// none.
void RefuseSharedFiles(std::span<const NamedFile> outputs, std::span<const NamedFile> inputs);

class OutputFile {
  public:
    // Creates a temporary file in the folder of `path`, which takes all writes; if `path` is a link, in that
    // of its target. What is no regular file, as a device, a pipe or standard output, is opened itself.
    explicit OutputFile(std::filesystem::path path);
    // Removes the temporary file unless it was completed; an earlier file of the name is untouched then.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Returns whether the bytes were written. After one failure all further writes fail.
    bool Write(std::string_view bytes);
    uint64_t Size() const { return size_; }

    // Throws if a write failed.
    void CheckWrites() const;

    // Renames the temporary file, replacing an earlier one of the name; on failure changes nothing.
    void Complete();

  private:
    struct CloseFile {
        void operator()(FILE* file) const { fclose(file); }
    };

    void Take(int descriptor);
    bool OpenStream();
    void OpenTemporary();

    std::filesystem::path path_;       // as it was named
    std::filesystem::path target_;     // the same without links
    std::filesystem::path temporary_;  // empty if the bytes go to the target itself
    std::optional<RemovedOnInterrupt> guard_;
    std::unique_ptr<FILE, CloseFile> file_;
    uint64_t size_ = 0;
    int error_ = 0;  // of the first failed write
    bool completed_ = false;
};

// Write a whole file that way.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);
void WriteWholeFile(const std::filesystem::path& path, std::span<const uint8_t> bytes);

}  // namespace orvex::tools
