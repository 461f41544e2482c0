// The table of the functions that a CallWatch sees, and their replacements.

#include <algorithm>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "engine/hpcrlib.h"
#include "platform/shell.h"
#include "tests/system/faults/call_watch.h"
#include "tools/common/wide_text.h"

namespace orvex {

using namespace tools;

namespace {

// A function's name as a template argument.
template <size_t N>
struct Name {
    constexpr Name(const char (&name)[N]) { std::copy_n(name, N, text); }
    constexpr operator std::string_view() const { return {text, N - 1}; }
    char text[N];
};

WatchedFunction* Find(std::string_view name) {
    for (WatchedFunction& function : WatchedFunctions()) {
        if (function.name == name) return &function;
    }
    return nullptr;
}

std::string BaseName(const std::string& path) {
    return path.substr(path.find_last_of("\\/") + 1);
}

// Return what a call is about, from the argument that tells it.
std::string Subject(const char* text) {
    return text == nullptr ? "" : BaseName(text);
}
std::string Subject(const WCHAR* text) {
    return text == nullptr ? "" : BaseName(Utf8(text));
}
std::string Subject(HANDLE handle) {
    return CurrentWatch()->NameOf(handle);
}
std::string Subject(UINT codePage) {
    return std::to_string(codePage);
}

// Returns the variable of a line of the job header, "thumbnail" for the text of a PNG file, "data" for the
// rest.
std::string WrittenSubject(std::string_view bytes) {
    if (bytes.starts_with("iVBOR")) return "thumbnail";
    if (bytes.starts_with("@PJL JOB NAME=")) return "JOB NAME";
    if (!bytes.starts_with("@PJL SET ")) return bytes == "\"\n" ? "closing quote" : "data";
    bytes.remove_prefix(sizeof "@PJL SET " - 1);
    return std::string(bytes.substr(0, bytes.find('=')));
}

constexpr int kNoSubject = -1;

template <typename Result>
Result ResultOf(uint64_t bits) {
    if constexpr (std::is_pointer_v<Result>) {
        return reinterpret_cast<Result>(static_cast<uintptr_t>(bits));
    } else {
        return static_cast<Result>(bits);
    }
}

// Returns the replacement of an entry point of the print engine's library.
FARPROC Watched(const char* name, FARPROC entryPoint) {
    WatchedFunction* function = Find(name);
    if (entryPoint == nullptr || function == nullptr || !function->isEntryPoint) return entryPoint;
    function->original = reinterpret_cast<void*>(entryPoint);
    return reinterpret_cast<FARPROC>(function->replacement);
}

template <Name kName, int kSubject, bool kEntryPoint, typename Function>
struct Replacement;

// The functions of the system and of the engine have the same calling convention.
#define CALLED HPCRLIB_CALL

template <Name kName, int kSubject, bool kEntryPoint, typename Result, typename... Arguments>
struct Replacement<kName, kSubject, kEntryPoint, Result CALLED(Arguments...)> {
    static std::string SubjectOf([[maybe_unused]] std::tuple<Arguments...> arguments) {
        const CallWatch::Aside aside;
        if constexpr (std::string_view(kName) == "WritePrinter") {
            return WrittenSubject({static_cast<const char*>(std::get<1>(arguments)), std::get<2>(arguments)});
        } else if constexpr (std::string_view(kName).ends_with("PrinterDataExA")) {
            return BaseName(std::get<1>(arguments)) + " " + std::get<2>(arguments);
        } else if constexpr (kSubject != kNoSubject) {
            return Subject(std::get<kSubject>(arguments));
        }
        return {};
    }

    // Returns whether the host makes the call: only the host reads UTF-8, and natively it shares the driver's
    // functions.
    static bool IsHosts(const std::string& subject) {
        return std::string_view(kName) == "MultiByteToWideChar" && subject == std::to_string(CP_UTF8);
    }

    static Result CALLED Call(Arguments... arguments) {
        static const WatchedFunction& row = *Find(kName);
        const std::string subject = SubjectOf({arguments...});
        size_t bytes = 0;
        if constexpr (std::string_view(kName) == "WritePrinter")
            bytes = std::get<2>(std::tuple(arguments...));
        const bool fails = !IsHosts(subject) && CurrentWatch()->Take(kName, subject, bytes);
        Result result = ResultOf<Result>(row.failure);
        if (!fails || row.effect == CallEffect::kCloses || row.effect == CallEffect::kGivesBack) {
            const Result came = CallOn(row, arguments...);
            NoteHandle(row.effect, came, subject, arguments...);
            if (!fails) result = came;
        }
        if (fails && row.lastError != 0) SetLastError(row.lastError);
        if constexpr (std::string_view(kName) == "GetProcAddress") {
            result = Watched(std::get<1>(std::tuple(arguments...)), result);
        }
        return result;
    }

    static Result CallOn(const WatchedFunction& row, Arguments... arguments) {
        const auto original = reinterpret_cast<Result(CALLED*)(Arguments...)>(row.original);
        if constexpr (kEntryPoint) {
            // The engine calls the driver's output callback, whose calls belong to this place.
            CurrentWatch()->Enter(kName);
            const Result came = original(arguments...);
            CurrentWatch()->Leave();
            return came;
        } else {
            const CallWatch::Aside aside;
            return original(arguments...);
        }
    }

    static void NoteHandle(CallEffect effect, Result result, const std::string& subject,
                           Arguments... arguments) {
        if (effect != CallEffect::kOpens && effect != CallEffect::kCloses) return;
        if constexpr (std::is_same_v<Result, HANDLE>) {
            CurrentWatch()->NoteHandle(effect, result, subject);
        } else if constexpr (std::is_same_v<std::tuple_element_t<0, std::tuple<Arguments...>>, HANDLE>) {
            CurrentWatch()->NoteHandle(effect, std::get<0>(std::tuple(arguments...)), subject);
        }
    }
};

template <Name kName, int kSubject, bool kEntryPoint, typename Function>
WatchedFunction Row(uint64_t failure, DWORD lastError, CallEffect effect) {
    const auto replacement = &Replacement<kName, kSubject, kEntryPoint, Function>::Call;
    return {kName.text, failure, lastError, effect, reinterpret_cast<void*>(replacement), kEntryPoint};
}

const uint64_t kInvalid = reinterpret_cast<uintptr_t>(INVALID_HANDLE_VALUE);
constexpr auto kNone = CallEffect::kNone;
constexpr auto kOpens = CallEffect::kOpens;
constexpr auto kCloses = CallEffect::kCloses;
constexpr auto kGivesBack = CallEffect::kGivesBack;

// `subject` is the number of the argument that tells what the call is about.
#define IMPORT(function, subject, ...) Row<#function, subject, false, decltype(function)>(__VA_ARGS__)
#define ENTRY_POINT(function, ...) Row<#function, kNoSubject, true, decltype(function)>(__VA_ARGS__)

}  // namespace

// clang-format off
std::vector<WatchedFunction>& WatchedFunctions() {
    static std::vector<WatchedFunction> functions = {
        // files
        IMPORT(CreateFileA,       0, kInvalid, ERROR_ACCESS_DENIED, kOpens),
        IMPORT(CreateFileW,       0, kInvalid, ERROR_SHARING_VIOLATION, kOpens),
        IMPORT(ReadFile,          0, FALSE, ERROR_READ_FAULT, kNone),
        IMPORT(WriteFile,         0, FALSE, ERROR_DISK_FULL, kNone),
        IMPORT(SetFilePointerEx,  0, FALSE, ERROR_SEEK, kNone),
        IMPORT(GetFileSizeEx,     0, FALSE, ERROR_INVALID_FUNCTION, kNone),
        IMPORT(CloseHandle,       0, FALSE, ERROR_INVALID_HANDLE, kCloses),
        IMPORT(MoveFileA,         0, FALSE, ERROR_ACCESS_DENIED, kNone),
        IMPORT(DeleteFileA,       0, FALSE, ERROR_ACCESS_DENIED, kNone),
        IMPORT(PathFileExistsA,   0, FALSE, ERROR_FILE_NOT_FOUND, kNone),
        IMPORT(FindFirstFileW,    0, kInvalid, ERROR_PATH_NOT_FOUND, kOpens),
        IMPORT(FindNextFileW,     0, FALSE, ERROR_NO_MORE_FILES, kNone),
        IMPORT(FindClose,         0, FALSE, ERROR_INVALID_HANDLE, kCloses),
        // folders
        IMPORT(SHGetSpecialFolderPathW, kNoSubject, FALSE, ERROR_ACCESS_DENIED, kNone),
        IMPORT(PathAppendW,             1, FALSE, 0, kNone),
        IMPORT(GetCurrentDirectoryW,    kNoSubject, 0, ERROR_NOT_ENOUGH_MEMORY, kNone),
        IMPORT(SetCurrentDirectoryW,    0, FALSE, ERROR_ACCESS_DENIED, kNone),
        IMPORT(GetModuleFileNameA,      kNoSubject, 0, ERROR_MOD_NOT_FOUND, kNone),
        // the log's mutex
        IMPORT(CreateMutexA,        2, 0, ERROR_ACCESS_DENIED, kOpens),
        IMPORT(WaitForSingleObject, 0, WAIT_TIMEOUT, 0, kNone),
        IMPORT(ReleaseMutex,        0, FALSE, ERROR_NOT_OWNER, kGivesBack),
        // texts
        IMPORT(GetLocaleInfoW,      kNoSubject, 0, ERROR_INVALID_PARAMETER, kNone),
        IMPORT(WideCharToMultiByte, 0, 0, ERROR_INVALID_PARAMETER, kNone),
        IMPORT(MultiByteToWideChar, 0, 0, ERROR_INVALID_PARAMETER, kNone),
        // the spooler
        IMPORT(GetPrinterDriverW, kNoSubject, FALSE, ERROR_INVALID_HANDLE, kNone),
        IMPORT(GetPrinterW,       kNoSubject, FALSE, ERROR_INVALID_HANDLE, kNone),
        IMPORT(OpenPrinterW,      kNoSubject, FALSE, ERROR_ACCESS_DENIED, kNone),
        IMPORT(EnumPrinterKeyW,   kNoSubject, ERROR_ACCESS_DENIED, 0, kNone),
        IMPORT(GetPrinterDataExA, kNoSubject, ERROR_ACCESS_DENIED, 0, kNone),
        IMPORT(SetPrinterDataExA, kNoSubject, ERROR_ACCESS_DENIED, 0, kNone),
        IMPORT(WritePrinter,      kNoSubject, FALSE, ERROR_WRITE_FAULT, kNone),
        // the graphics engine
        IMPORT(EngCreateBitmap,     kNoSubject, 0, ERROR_NOT_ENOUGH_MEMORY, kNone),
        IMPORT(EngAssociateSurface, kNoSubject, FALSE, ERROR_INVALID_PARAMETER, kNone),
        IMPORT(EngDeleteSurface,    kNoSubject, FALSE, ERROR_INVALID_PARAMETER, kGivesBack),
        IMPORT(EngEraseSurface,     kNoSubject, FALSE, ERROR_INVALID_PARAMETER, kNone),
        IMPORT(EngCreatePalette,    kNoSubject, 0, ERROR_NOT_ENOUGH_MEMORY, kNone),
        // the print engine's library
        IMPORT(LoadLibraryW,   0, 0, ERROR_MOD_NOT_FOUND, kNone),
        IMPORT(GetProcAddress, 1, 0, ERROR_PROC_NOT_FOUND, kNone),
        IMPORT(FreeLibrary,    kNoSubject, FALSE, ERROR_INVALID_HANDLE, kGivesBack),
        ENTRY_POINT(HPCRLIB_JobStart,         0, 0, kNone),
        ENTRY_POINT(HPCRLIB_JobEnd,           0, 0, kGivesBack),
        ENTRY_POINT(HPCRLIB_PageStart,        0, 0, kNone),
        ENTRY_POINT(HPCRLIB_PageEnd,          0, 0, kNone),
        ENTRY_POINT(HPCRLIB_RasterBlockStart, 0, 0, kNone),
        ENTRY_POINT(HPCRLIB_RasterRow,        0, 0, kNone),
        ENTRY_POINT(HPCRLIB_RasterBlockEnd,   0, 0, kNone),
    };
    return functions;
}
// clang-format on

}  // namespace orvex
