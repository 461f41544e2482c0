#include "tools/orvexprint/log_switch.h"

#include <cstdlib>
#include <stdexcept>

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/trace/read_trace.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxNames = 100;

}  // namespace

struct LogSwitch::Replacements {
    static HANDLE WINAPI Create(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                                DWORD disposition, DWORD flags, HANDLE pattern) {
        if (path == current->control_) return current->OpenMask();
        const auto original = current->patches_.Original("CreateFileA", &Create);
        return original(path, access, share, attributes, disposition, flags, pattern);
    }
};

LogSwitch::LogSwitch(const DriverLibrary& driver, int mask)
    : folder_(driver.LogPath().parent_path()),
      control_(driver.LogControlName()),
      mask_(std::to_string(mask)) {
    std::error_code ignored;
    fs::create_directories(folder_, ignored);
    const HANDLE handle = OpenMask();
    if (handle == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("the log can't be turned on: no file can be made in " +
                                 Utf8FromPath(folder_));
    }
    CloseHandle(handle);
    patches_.Attach(driver.Module(), {{"CreateFileA", &Replacements::Create}});
}

// Opens an own file with the mask, which is gone as soon as it is closed.
HANDLE LogSwitch::OpenMask() const {
    HANDLE file = INVALID_HANDLE_VALUE;
    fs::path path;
    for (int i = 0; i < kMaxNames && file == INVALID_HANDLE_VALUE; ++i) {
        path = folder_ / ("orvexprint-" + std::to_string(i) + ".dat");
        file = CreateFileW(AsWchar(WindowsPath(path)), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    }
    if (file == INVALID_HANDLE_VALUE) return file;
#ifndef _WIN32
    fs::remove(path);
#endif
    DWORD written = 0;
    WriteFile(file, mask_.data(), static_cast<DWORD>(mask_.size()), &written, nullptr);
    SetFilePointerEx(file, {}, nullptr, FILE_BEGIN);
    return file;
}

LogTail::LogTail(const DriverLibrary& driver) : log_(driver.LogPath()) {
    std::error_code missing;
    const std::uintmax_t size = fs::file_size(log_, missing);
    if (!missing) begin_ = size;
}

void LogTail::WriteTree(std::ostream& out) const {
    const std::unique_ptr<std::istream> log = OpenFile(log_);
    // A log that has been moved away since begins anew.
    if (fs::file_size(log_) >= begin_) log->seekg(static_cast<std::streamoff>(begin_));
    const auto writer = trace::MakeTextWriter([&](std::string_view text) { out << text; });
    trace::ReadTrace(*log, {.thread = GetCurrentThreadId()}, *writer);
}

std::string LogLeftOn(const DriverLibrary& driver) {
    const fs::path control = driver.LogControlPath();
    std::error_code ignored;
    if (!fs::is_regular_file(control, ignored)) return {};
    const unsigned long long mask = strtoull(ReadWholeText(control).c_str(), nullptr, 10);
    if (mask == 0) return {};
    return "the driver's log is on for every program, with mask " + std::to_string(mask) +
           ", and makes printing slow; " + "remove " + Utf8FromPath(control) + " to turn it off";
}

}  // namespace orvex::tools::print
