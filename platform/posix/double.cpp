#include "platform/posix/double.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>

namespace doubles {

namespace {

// Constructed before main, from any translation unit's slots, in any order.
Slot*& FirstSlot() {
    static Slot* first = nullptr;
    return first;
}

struct HandleTable {
    std::mutex mutex;
    std::map<HANDLE, KernelObject*> objects;
    uintptr_t next = 0x100;
};

HandleTable& Handles() {
    static HandleTable* table = new HandleTable;
    return *table;
}

struct ScratchDrive {
    ScratchDrive() {
        if (const char* named = getenv("ORVEX_DRIVE_C")) {
            path = named;
            return;
        }
        std::string pattern = (std::filesystem::temp_directory_path() / "orvex-drive-c-XXXXXX").string();
        path = mkdtemp(pattern.data());
        owned = true;
    }
    ~ScratchDrive() {
        std::error_code ignored;
        if (owned) std::filesystem::remove_all(path, ignored);
    }
    std::string path;
    bool owned = false;
};

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | c >> 6);
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | c >> 12);
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | c >> 18);
        out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

}  // namespace

Slot::Slot(const char* slotName, void* slotTarget) : name(slotName), target(slotTarget), next(FirstSlot()) {
    FirstSlot() = this;
}

void** FindSlot(const char* name) {
    for (Slot* slot = FirstSlot(); slot != nullptr; slot = slot->next) {
        if (strcmp(slot->name, name) == 0) return &slot->target;
    }
    return nullptr;
}

std::vector<std::string> SlotNames() {
    std::vector<std::string> names;
    for (const Slot* slot = FirstSlot(); slot != nullptr; slot = slot->next) names.emplace_back(slot->name);
    return names;
}

const std::string& DriveC() {
    static ScratchDrive drive;
    return drive.path;
}

std::string PosixPath(const char* path) {
    std::string out = path;
    for (char& c : out) {
        if (c == '\\') c = '/';
    }
    if (out.size() >= 2 && (out[0] == 'c' || out[0] == 'C') && out[1] == ':') out = DriveC() + out.substr(2);
    return out;
}

std::string PosixPath(const WCHAR* path) {
    return PosixPath(Utf8(path).c_str());
}

std::u16string WindowsPath(const std::string& posixPath) {
    std::string out = posixPath;
    if (out.starts_with(DriveC())) out = "c:" + out.substr(DriveC().size());
    for (char& c : out) {
        if (c == '/') c = '\\';
    }
    return Utf16(out);
}

std::string Utf8(const WCHAR* text, size_t length) {
    std::string out;
    for (size_t i = 0; i < length; ++i) {
        char32_t c = static_cast<char16_t>(text[i]);
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < length && (text[i + 1] & 0xFC00) == 0xDC00) {
            c = 0x10000 + ((c & 0x3FF) << 10) + (static_cast<char16_t>(text[++i]) & 0x3FF);
        } else if (c >= 0xD800 && c < 0xE000) {
            c = 0xFFFD;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::string Utf8(const WCHAR* text) {
    size_t length = 0;
    while (text[length] != 0) ++length;
    return Utf8(text, length);
}

std::u16string Utf16(const std::string& text) {
    std::u16string out;
    for (size_t i = 0; i < text.size();) {
        const unsigned char lead = static_cast<unsigned char>(text[i]);
        const size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        bool whole = lead < 0x80 || (lead >= 0xC0 && lead < 0xF5 && i + length <= text.size());
        for (size_t k = 1; whole && k < length; ++k) {
            const unsigned char next = static_cast<unsigned char>(text[i + k]);
            whole = (next & 0xC0) == 0x80;
            c = c << 6 | (next & 0x3F);
        }
        if (!whole) {
            out += u'\xFFFD';
            ++i;
            continue;
        }
        if (c >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(c);
        }
        i += length;
    }
    return out;
}

HANDLE OpenHandle(KernelObject* object) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const HANDLE handle = reinterpret_cast<HANDLE>(table.next += 4);
    table.objects[handle] = object;
    return handle;
}

KernelObject* FindObject(HANDLE handle) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const auto found = table.objects.find(handle);
    return found == table.objects.end() ? nullptr : found->second;
}

size_t OpenHandleCount() {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    return table.objects.size();
}

KernelObject* ForgetHandle(HANDLE handle) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const auto found = table.objects.find(handle);
    if (found == table.objects.end()) return nullptr;
    KernelObject* object = found->second;
    table.objects.erase(found);
    return object;
}

BOOL FailWithErrno() {
    switch (errno) {
        case ENOENT:
            SetLastError(ERROR_FILE_NOT_FOUND);
            break;
        case ENOTDIR:
            SetLastError(ERROR_PATH_NOT_FOUND);
            break;
        case EACCES:
        case EPERM:
        case EISDIR:
        case ELOOP:
            SetLastError(ERROR_ACCESS_DENIED);
            break;
        case EEXIST:
            SetLastError(ERROR_ALREADY_EXISTS);
            break;
        case ENOSPC:
            SetLastError(ERROR_DISK_FULL);
            break;
        default:
            SetLastError(ERROR_GEN_FAILURE);
            break;
    }
    return FALSE;
}

}  // namespace doubles
