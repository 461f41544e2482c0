// The log of a test, and the backups that it is rotated into.
#pragma once

#include <filesystem>
#include <string>

#include "driver/support/log.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"

namespace orvex {

inline constexpr uintmax_t kMaxLogBytes = 104857600;

inline std::filesystem::path Backup(int number) {
    return LogFile().replace_extension(std::to_string(number) + ".txt");
}

// Removes the backups that a test leaves.
class BackupsRemoved {
  public:
    BackupsRemoved() { Remove(); }
    ~BackupsRemoved() { Remove(); }
    BackupsRemoved(const BackupsRemoved&) = delete;
    BackupsRemoved& operator=(const BackupsRemoved&) = delete;

  private:
    static void Remove() {
        for (int i = 0; i <= 10; ++i) std::filesystem::remove(Backup(i));
    }
};

inline void MakeLogOfSize(uintmax_t bytes) {
    WriteBytes(LogFile(), "");
    std::filesystem::resize_file(LogFile(), bytes);
}

inline void WriteOneLine() {
    LogError("line");
}

}  // namespace orvex
