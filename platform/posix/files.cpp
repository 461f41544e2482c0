#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>
#include <vector>

#include "platform/posix/handles.h"
#include "platform/posix/paths.h"
#include "platform/posix/slots.h"
#include "platform/posix/unicode.h"
#include "platform/shell.h"

namespace orvex::posix {

namespace {

// The way in which a file is open: the uses of the handle, and the uses for which others may open the file
// meanwhile, both as FILE_SHARE_... bits.
struct FileUse {
    dev_t device;
    ino_t inode;
    DWORD uses, share;

    bool Excludes(const FileUse& other) const {
        const bool sameFile = device == other.device && inode == other.inode;
        return sameFile && ((uses & ~other.share) != 0 || (other.uses & ~share) != 0);
    }
};

DWORD UsesOf(DWORD access) {
    DWORD uses = 0;
    if (access & (GENERIC_READ | FILE_READ_DATA)) uses |= FILE_SHARE_READ;
    if (access & (GENERIC_WRITE | FILE_WRITE_DATA | FILE_APPEND_DATA)) uses |= FILE_SHARE_WRITE;
    if (access & DELETE) uses |= FILE_SHARE_DELETE;
    return uses;
}

class File final : public KernelObject {
  public:
    // Takes ownership of the descriptor. Returns null, with the descriptor closed, when another handle of
    // this process excludes this use.
    static File* Open(int descriptor, const FileUse& use) {
        const std::lock_guard lock(mutex);
        const bool excluded = std::any_of(openFiles.begin(), openFiles.end(),
                                          [&](const File* other) { return use.Excludes(other->use_); });
        if (!excluded) return *openFiles.insert(new File(descriptor, use)).first;
        close(descriptor);
        return nullptr;
    }
    ~File() override {
        const std::lock_guard lock(mutex);
        openFiles.erase(this);
        close(descriptor_);
    }
    int Descriptor() const { return descriptor_; }

  private:
    File(int descriptor, const FileUse& use) : descriptor_(descriptor), use_(use) {}

    static inline std::mutex mutex;
    static inline std::set<File*>& openFiles =
        *new std::set<File*>;  // outlives every static owner of a handle

    int descriptor_;
    FileUse use_;
};

// Returns the file's descriptor; -1, with the last error set, for a handle of anything else.
int Descriptor(HANDLE handle) {
    const auto* file = dynamic_cast<File*>(FindObject(handle));
    if (file != nullptr) return file->Descriptor();
    SetLastError(ERROR_INVALID_HANDLE);
    return -1;
}

class FileSearch final : public KernelObject {
  public:
    std::vector<std::string> names;
    size_t next = 0;
};

BOOL TakeNextName(FileSearch& search, WIN32_FIND_DATAW* data) {
    if (search.next == search.names.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    const std::u16string name = Utf16(search.names[search.next++]);
    *data = {};
    const size_t length = std::min<size_t>(name.size(), MAX_PATH - 1);
    memcpy(data->cFileName, name.data(), length * sizeof(WCHAR));
    return TRUE;
}

HANDLE OpenFile(const std::string& path, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    const bool writes = (access & (GENERIC_WRITE | FILE_APPEND_DATA)) != 0;
    int mode = writes ? ((access & GENERIC_READ) ? O_RDWR : O_WRONLY) : O_RDONLY;
    if (access & FILE_APPEND_DATA) mode |= O_APPEND;
    if (disposition == OPEN_ALWAYS || disposition == CREATE_ALWAYS) mode |= O_CREAT;
    if (disposition == CREATE_NEW) mode |= O_CREAT | O_EXCL;
    if (disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING) mode |= O_TRUNC;
    if (flags & FILE_FLAG_OPEN_REPARSE_POINT) mode |= O_NOFOLLOW;
    const int descriptor = open(path.c_str(), mode | O_CLOEXEC, 0666);
    struct stat status = {};
    if (descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        close(descriptor);
        errno = EISDIR;
    } else if (descriptor >= 0) {
        File* file = File::Open(descriptor, {status.st_dev, status.st_ino, UsesOf(access), share});
        if (file != nullptr) return OpenHandle(file);
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    FailWithErrno();
    return INVALID_HANDLE_VALUE;
}

}  // namespace

WIN32_FUNCTION(HANDLE, CreateFileA,
               (LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                DWORD flags, HANDLE pattern),
               (path, access, share, attributes, disposition, flags, pattern)) {
    (void)attributes, (void)pattern;
    return OpenFile(PosixPath(path), access, share, disposition, flags);
}

WIN32_FUNCTION(HANDLE, CreateFileW,
               (LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                DWORD flags, HANDLE pattern),
               (path, access, share, attributes, disposition, flags, pattern)) {
    (void)attributes, (void)pattern;
    return OpenFile(PosixPath(path), access, share, disposition, flags);
}

WIN32_FUNCTION(BOOL, ReadFile,
               (HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped),
               (file, buffer, size, read, overlapped)) {
    (void)overlapped;
    *read = 0;
    const int descriptor = Descriptor(file);
    if (descriptor < 0) return FALSE;
    DWORD total = 0;
    while (total < size) {
        const ssize_t got = ::read(descriptor, static_cast<char*>(buffer) + total, size - total);
        if (got < 0) return FailWithErrno();
        if (got == 0) break;
        total += static_cast<DWORD>(got);
    }
    *read = total;
    return TRUE;
}

WIN32_FUNCTION(BOOL, WriteFile,
               (HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written, LPOVERLAPPED overlapped),
               (file, buffer, size, written, overlapped)) {
    (void)overlapped;
    *written = 0;
    const int descriptor = Descriptor(file);
    if (descriptor < 0) return FALSE;
    const ssize_t put = ::write(descriptor, buffer, size);
    if (put < 0) return FailWithErrno();
    *written = static_cast<DWORD>(put);
    return TRUE;
}

WIN32_FUNCTION(BOOL, SetFilePointerEx,
               (HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER position, DWORD method),
               (file, distance, position, method)) {
    const int descriptor = Descriptor(file);
    if (descriptor < 0) return FALSE;
    const int whence = method == FILE_BEGIN ? SEEK_SET : method == FILE_CURRENT ? SEEK_CUR : SEEK_END;
    const off_t reached = lseek(descriptor, distance.QuadPart, whence);
    if (reached < 0) return FailWithErrno();
    if (position != nullptr) position->QuadPart = reached;
    return TRUE;
}

WIN32_FUNCTION(BOOL, GetFileSizeEx, (HANDLE file, PLARGE_INTEGER size), (file, size)) {
    const int descriptor = Descriptor(file);
    struct stat status;
    if (descriptor < 0) return FALSE;
    if (fstat(descriptor, &status) != 0) return FailWithErrno();
    size->QuadPart = status.st_size;
    return TRUE;
}

WIN32_FUNCTION(BOOL, CloseHandle, (HANDLE handle), (handle)) {
    KernelObject* object = ForgetHandle(handle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    delete object;
    return TRUE;
}

WIN32_FUNCTION(BOOL, MoveFileA, (LPCSTR from, LPCSTR to), (from, to)) {
    if (access(PosixPath(to).c_str(), F_OK) == 0) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return FALSE;
    }
    return rename(PosixPath(from).c_str(), PosixPath(to).c_str()) == 0 ? TRUE : FailWithErrno();
}

WIN32_FUNCTION(BOOL, DeleteFileA, (LPCSTR path), (path)) {
    return unlink(PosixPath(path).c_str()) == 0 ? TRUE : FailWithErrno();
}

WIN32_FUNCTION(BOOL, PathFileExistsA, (LPCSTR path), (path)) {
    return access(PosixPath(path).c_str(), F_OK) == 0;
}

// Finds the folder's matching names in alphabetical order, like NTFS.
WIN32_FUNCTION(HANDLE, FindFirstFileW, (LPCWSTR pattern, LPWIN32_FIND_DATAW data), (pattern, data)) {
    const std::string path = PosixPath(pattern);
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash);
    const std::string name = path.substr(slash + 1);
    DIR* directory = opendir(folder.c_str());
    if (directory == nullptr) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    auto* search = new FileSearch;
    while (const dirent* entry = readdir(directory)) {
        if (fnmatch(name.c_str(), entry->d_name, FNM_CASEFOLD) == 0) search->names.push_back(entry->d_name);
    }
    closedir(directory);
    std::sort(search->names.begin(), search->names.end());
    if (!TakeNextName(*search, data)) {
        delete search;
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return OpenHandle(search);
}

WIN32_FUNCTION(BOOL, FindNextFileW, (HANDLE handle, LPWIN32_FIND_DATAW data), (handle, data)) {
    auto* search = dynamic_cast<FileSearch*>(FindObject(handle));
    if (search != nullptr) return TakeNextName(*search, data);
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

WIN32_FUNCTION(BOOL, FindClose, (HANDLE handle), (handle)) {
    KernelObject* object = ForgetHandle(handle);
    delete object;
    return object != nullptr;
}

}  // namespace orvex::posix
