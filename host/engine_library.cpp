#include "host/engine_library.h"

#include <cstddef>
#include <cstring>
#include <string_view>

#include "host/wide_text.h"

namespace fs = std::filesystem;

namespace {

EngineLibrary* current = nullptr;

constexpr std::u16string_view kLibraryName = u"hpcrlib.dll";
constexpr uint32_t kSuccess = 1;
constexpr size_t kMaxRefusals = 16;
constexpr size_t kMaxPages = 100000;

char16_t LowerAscii(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

bool IsEngineLibrary(std::u16string_view name) {
    if (name.size() != kLibraryName.size()) return false;
    for (size_t i = 0; i < name.size(); ++i) {
        if (LowerAscii(name[i]) != kLibraryName[i]) return false;
    }
    return true;
}

std::string Numbered(const char* call, uint64_t number) {
    return call + std::string(" ") + std::to_string(number);
}

}  // namespace

// What the driver calls in place of the engine's entry points.
struct EngineThunks {
    static EngineTable& Entries() { return current->entries_; }
    static EngineBooks& Books() { return current->books_; }
    static EnginePage* CurrentPage() { return Books().pages.empty() ? nullptr : &Books().pages.back(); }

    // Passes a status on and keeps a refusal.
    static uint32_t Status(uint32_t status, const std::string& call) {
        if (status != kSuccess) current->Refused(call + " was refused (" + std::to_string(status) + ")");
        return status;
    }

    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t mode,
                                          uint32_t reserved) {
        const uint64_t job = Entries().jobStart(output, context, mode, reserved);
        if (job == 0) current->Refused("HPCRLIB_JobStart started no job");
        if (job != 0) ++Books().jobsStarted;
        return job;
    }

    static uint32_t HPCRLIB_CALL JobEnd(uint64_t job) {
        const uint32_t status = Status(Entries().jobEnd(job), "HPCRLIB_JobEnd");
        if (status == kSuccess) ++Books().jobsEnded;
        return status;
    }

    static uint32_t HPCRLIB_CALL PageStart(uint64_t job, uint32_t width, uint32_t length) {
        if (Books().pages.size() == kMaxPages) Books().pages.pop_back();
        Books().pages.push_back({.width = width, .length = length});
        ++Books().pagesStarted;
        return Status(Entries().pageStart(job, width, length),
                      Numbered("HPCRLIB_PageStart of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL BlockStart(uint64_t job, uint32_t reserved, uint32_t top, uint32_t rowWidth,
                                            uint32_t rows) {
        if (EnginePage* page = CurrentPage()) {
            page->blockTop = top;
            page->rowWidth = rowWidth;
            page->blockRows = rows;
        }
        return Status(Entries().rasterBlockStart(job, reserved, top, rowWidth, rows),
                      Numbered("HPCRLIB_RasterBlockStart of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL Row(uint64_t job, const uint32_t* row) {
        EnginePage* const page = CurrentPage();
        const uint32_t status = Entries().rasterRow(job, row);
        if (status != kSuccess) {
            return Status(status,
                          Numbered("HPCRLIB_RasterRow of row", page == nullptr ? 0 : page->rowsTaken));
        }
        ++Books().rowsTaken;
        if (page != nullptr) ++page->rowsTaken;
        if (page != nullptr && current->onRow_) current->onRow_(*page, Books().pagesStarted);
        return status;
    }

    static uint32_t HPCRLIB_CALL BlockEnd(uint64_t job) {
        return Status(Entries().rasterBlockEnd(job),
                      Numbered("HPCRLIB_RasterBlockEnd of page", Books().pagesStarted));
    }

    static uint32_t HPCRLIB_CALL PageEnd(uint64_t job) {
        const uint32_t status =
            Status(Entries().pageEnd(job), Numbered("HPCRLIB_PageEnd of page", Books().pagesStarted));
        if (status == kSuccess) ++Books().pagesEnded;
        return status;
    }
};

namespace {

struct EntryPoint {
    const char* name;
    size_t offset;  // in an EngineTable
    void* thunk;
};

const EntryPoint kEntryPoints[] = {
    {"HPCRLIB_JobStart", offsetof(EngineTable, jobStart), reinterpret_cast<void*>(&EngineThunks::JobStart)},
    {"HPCRLIB_JobEnd", offsetof(EngineTable, jobEnd), reinterpret_cast<void*>(&EngineThunks::JobEnd)},
    {"HPCRLIB_PageStart", offsetof(EngineTable, pageStart),
     reinterpret_cast<void*>(&EngineThunks::PageStart)},
    {"HPCRLIB_PageEnd", offsetof(EngineTable, pageEnd), reinterpret_cast<void*>(&EngineThunks::PageEnd)},
    {"HPCRLIB_RasterBlockStart", offsetof(EngineTable, rasterBlockStart),
     reinterpret_cast<void*>(&EngineThunks::BlockStart)},
    {"HPCRLIB_RasterRow", offsetof(EngineTable, rasterRow), reinterpret_cast<void*>(&EngineThunks::Row)},
    {"HPCRLIB_RasterBlockEnd", offsetof(EngineTable, rasterBlockEnd),
     reinterpret_cast<void*>(&EngineThunks::BlockEnd)},
};

void** Entry(EngineTable& table, const EntryPoint& point) {
    return reinterpret_cast<void**>(reinterpret_cast<uint8_t*>(&table) + point.offset);
}

}  // namespace

// The loader's functions as the driver imports them.
struct LoaderReplacements {
    static HMODULE WINAPI Load(LPCWSTR name) {
        const auto original = current->patches_.Original("LoadLibraryW", &Load);
        if (!IsEngineLibrary(AsView(name))) return original(name);
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

    // A library of its own folder may need others that lie beside it.
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
        for (const EntryPoint& point : kEntryPoints) {
            if (strcmp(point.name, name) != 0) continue;
            void** entry = Entry(current->entries_, point);
            if (auto* table = std::get_if<EngineTable>(&current->source_)) {
                *entry = *Entry(*table, point);
            } else {
                *entry = reinterpret_cast<void*>(original(module, name));
            }
            if (*entry != nullptr) return reinterpret_cast<FARPROC>(point.thunk);
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
        return std::holds_alternative<EngineTable>(current->source_) ? TRUE : original(module);
    }
};

EngineLibrary::EngineLibrary(EngineSource source) : source_(std::move(source)) {
    current = this;
}

EngineLibrary::~EngineLibrary() {
    current = nullptr;
}

void EngineLibrary::Attach(HMODULE module) {
    patches_.Attach(module, {{"LoadLibraryW", &LoaderReplacements::Load},
                             {"GetProcAddress", &LoaderReplacements::FindEntry},
                             {"FreeLibrary", &LoaderReplacements::Free}});
}

void EngineLibrary::Refused(std::string complaint) {
    ++books_.refusalCount;
    if (books_.refusals.size() < kMaxRefusals) books_.refusals.push_back(std::move(complaint));
}
