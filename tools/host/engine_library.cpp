#include "tools/host/engine_library.h"

#include <cstring>

#include <strings.h>

#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr char kLibraryName[] = "hpcrlib.dll";
constexpr size_t kMaxRefusals = 16;
constexpr size_t kMaxPages = 100000;

std::string Numbered(const char* call, uint64_t number) {
    return call + std::string(" ") + std::to_string(number);
}

}  // namespace

// The functions that the driver calls in place of the engine's.
struct EngineLibrary::Thunks {
    static PrintEngine& Entries() { return current->entries_; }
    static EngineBooks& Books() { return current->books_; }
    static EnginePage* CurrentPage() { return Books().pages.empty() ? nullptr : &Books().pages.back(); }

    // Passes on a status and records a refusal.
    static uint32_t Status(uint32_t status, const std::string& call) {
        if (status != kEngineSuccess)
            current->Refused(call + " was refused (" + std::to_string(status) + ")");
        return status;
    }

    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t mode,
                                          uint32_t reserved) {
        const uint64_t job = Entries().HPCRLIB_JobStart(output, context, mode, reserved);
        if (job == 0) current->Refused("HPCRLIB_JobStart started no job");
        if (job != 0) ++Books().jobsStarted;
        return job;
    }

    static uint32_t HPCRLIB_CALL JobEnd(uint64_t job) {
        const uint32_t status = Status(Entries().HPCRLIB_JobEnd(job), "HPCRLIB_JobEnd");
        if (status == kEngineSuccess) ++Books().jobsEnded;
        return status;
    }

    static uint32_t HPCRLIB_CALL PageStart(uint64_t job, uint32_t width, uint32_t length) {
        if (Books().pages.size() == kMaxPages) Books().pages.pop_back();
        Books().pages.push_back({.width = width, .length = length});
        ++Books().pagesStarted;
        return Status(Entries().HPCRLIB_PageStart(job, width, length),
                      Numbered("HPCRLIB_PageStart of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL BlockStart(uint64_t job, uint32_t reserved, uint32_t top, uint32_t rowWidth,
                                            uint32_t rows) {
        if (EnginePage* page = CurrentPage()) {
            page->blockTop = top;
            page->rowWidth = rowWidth;
            page->blockRows = rows;
        }
        return Status(Entries().HPCRLIB_RasterBlockStart(job, reserved, top, rowWidth, rows),
                      Numbered("HPCRLIB_RasterBlockStart of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL Row(uint64_t job, const uint32_t* row) {
        EnginePage* const page = CurrentPage();
        const uint32_t status = Entries().HPCRLIB_RasterRow(job, row);
        if (status != kEngineSuccess) {
            return Status(status,
                          Numbered("HPCRLIB_RasterRow of row", page == nullptr ? 0 : page->rowsTaken));
        }
        ++Books().rowsTaken;
        if (page != nullptr) ++page->rowsTaken;
        if (page != nullptr && current->onRow_) current->onRow_(*page, Books().pagesStarted);
        return status;
    }

    static uint32_t HPCRLIB_CALL BlockEnd(uint64_t job) {
        return Status(Entries().HPCRLIB_RasterBlockEnd(job),
                      Numbered("HPCRLIB_RasterBlockEnd of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL PageEnd(uint64_t job) {
        const uint32_t status =
            Status(Entries().HPCRLIB_PageEnd(job), Numbered("HPCRLIB_PageEnd of page", Books().pagesStarted));
        if (status == kEngineSuccess) ++Books().pagesEnded;
        return status;
    }
};

// The loader's functions as the driver imports them.
struct EngineLibrary::LoaderReplacements {
    inline static PrintEngine thunks = {
        .HPCRLIB_JobStart = &Thunks::JobStart,
        .HPCRLIB_JobEnd = &Thunks::JobEnd,
        .HPCRLIB_PageStart = &Thunks::PageStart,
        .HPCRLIB_RasterBlockStart = &Thunks::BlockStart,
        .HPCRLIB_RasterRow = &Thunks::Row,
        .HPCRLIB_RasterBlockEnd = &Thunks::BlockEnd,
        .HPCRLIB_PageEnd = &Thunks::PageEnd,
    };

    static HMODULE WINAPI Load(LPCWSTR name) {
        const auto original = current->patches_.Original("LoadLibraryW", &Load);
        if (strcasecmp(Utf8(name).c_str(), kLibraryName) != 0) return original(name);
        if (current->loadingFails_) {
            SetLastError(ERROR_MOD_NOT_FOUND);
        } else if (const auto* file = std::get_if<fs::path>(&current->source_)) {
            current->handle_ = LoadFile(original, *file);
        } else {
            current->handle_ = reinterpret_cast<HMODULE>(current);
        }
        if (current->handle_ == nullptr) {
            const DWORD code = GetLastError();
            current->Refused("hpcrlib.dll can't be loaded (error " + std::to_string(code) + ")");
            SetLastError(code);
            return nullptr;
        }
        ++current->books_.loads;
        return current->handle_;
    }

    // Loads the library so that others beside it are found, in case it needs them.
    static HMODULE LoadFile([[maybe_unused]] decltype(&Load) original, const fs::path& file) {
        const std::u16string path = WindowsPath(fs::absolute(file));
#ifdef _WIN32
        return LoadLibraryExW(AsWchar(path), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
#else
        return original(AsWchar(path));
#endif
    }

    static FARPROC WINAPI FindEntry(HMODULE module, LPCSTR name) {
        const auto original = current->patches_.Original("GetProcAddress", &FindEntry);
        if (module == nullptr || module != current->handle_) return original(module, name);
        for (const PrintEngineExport& point : kPrintEngineExports) {
            if (strcmp(point.name, name) != 0) continue;
            void** entry = point.In(current->entries_);
            if (auto* engine = std::get_if<PrintEngine>(&current->source_)) {
                *entry = *point.In(*engine);
            } else {
                *entry = reinterpret_cast<void*>(original(module, name));
            }
            if (*entry != nullptr) return reinterpret_cast<FARPROC>(*point.In(thunks));
        }
        current->Refused(std::string("hpcrlib.dll has no ") + name);
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }

    static BOOL WINAPI Free(HMODULE module) {
        const auto original = current->patches_.Original("FreeLibrary", &Free);
        if (module == nullptr || module != current->handle_) return original(module);
        ++current->books_.frees;
        current->handle_ = nullptr;
        current->entries_ = {};
        return std::holds_alternative<PrintEngine>(current->source_) ? TRUE : original(module);
    }
};

void EngineLibrary::Attach(HMODULE module) {
    patches_.Attach(module, {{"LoadLibraryW", &LoaderReplacements::Load},
                             {"GetProcAddress", &LoaderReplacements::FindEntry},
                             {"FreeLibrary", &LoaderReplacements::Free}});
}

void EngineLibrary::Refused(std::string complaint) {
    ++books_.refusalCount;
    if (books_.refusals.size() < kMaxRefusals) books_.refusals.push_back(std::move(complaint));
}

}  // namespace orvex::tools
