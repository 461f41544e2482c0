#include "tools/common/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tools/common/wide_text.h"

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxTemporaries = 100;
constexpr size_t kPart = size_t{1} << 20;  // bytes read at a time
constexpr size_t kBuffer = size_t{1} << 18;
constexpr int kInputDescriptor = 0;
constexpr int kOutputDescriptor = 1;
#ifdef _WIN32
constexpr int kOpenAlways = _O_BINARY;
#else
constexpr int kOpenAlways = O_CLOEXEC;
#endif

[[noreturn]] void Fail(const fs::path& path, const std::string& problem) {
    throw std::runtime_error(Utf8FromPath(path) + " " + problem);
}

void RefuseFolder(const fs::path& path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) Fail(path, "is a folder");
}

int Open(const fs::path& path, int flags) {
#ifdef _WIN32
    return _wopen(path.c_str(), flags | kOpenAlways, _S_IREAD | _S_IWRITE);
#else
    return open(path.c_str(), flags | kOpenAlways, 0666);
#endif
}

int OpenToRead(const fs::path& path) {
    RefuseFolder(path);
    const int descriptor = Open(path, O_RDONLY);
    if (descriptor < 0) Fail(path, "can't be opened: " + FileReason(errno));
    return descriptor;
}

// Owner of a descriptor.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return number_ >= 0; }
    int Number() const { return number_; }
    int Release() { return std::exchange(number_, -1); }

  private:
    int number_;
};

std::vector<uint8_t> ReadAll(const Descriptor& file, const fs::path& path, size_t most) {
    std::vector<uint8_t> bytes;
    for (;;) {
        const size_t size = bytes.size();
        bytes.resize(size + kPart);
        const auto came = read(file.Number(), bytes.data() + size, kPart);
        if (came < 0) Fail(path, "can't be read: " + FileReason(errno));
        bytes.resize(size + static_cast<size_t>(came));
        if (bytes.size() > most) Fail(path, "is too large");
        if (came == 0) return bytes;
    }
}

const std::vector<uint8_t>& StandardInput() {
    static const std::vector<uint8_t> bytes = [] {
#ifdef _WIN32
        _setmode(kInputDescriptor, _O_BINARY);
#endif
        return ReadAll(Descriptor(dup(kInputDescriptor)), "standard input", SIZE_MAX);
    }();
    return bytes;
}

// Returns the path with every link at its end followed, so that a file replaced by it leaves the link alone.
fs::path WithoutLinks(fs::path path) {
#ifdef _WIN32
    const Descriptor file(Open(path, O_RDONLY));
    if (!file.IsOpen()) return path;
    std::u16string name(32768, u'\0');
    name.resize(GetFinalPathNameByHandleW(reinterpret_cast<HANDLE>(_get_osfhandle(file.Number())),
                                          AsWchar(name), static_cast<DWORD>(name.size()), 0));
    return name.empty() ? path : fs::path(name);
#else
    std::error_code ignored;
    constexpr int kMaxLinks = 40;
    for (int i = 0; i < kMaxLinks && fs::is_symlink(path, ignored); ++i) {
        path = path.parent_path() / fs::read_symlink(path, ignored);
    }
    return path;
#endif
}

}  // namespace

bool IsStandardInput(const fs::path& path) {
    return path == "-" || path == "/dev/stdin";
}

bool IsStandardOutput(const fs::path& path) {
    return path == "-" || path == "/dev/stdout";
}

std::string FileReason(int error) {
    switch (error) {
        case ENOENT:
            return "there is no such file or folder";
        case ENOTDIR:
            return "a part of its path is no folder";
        case EACCES:
        case EPERM:
            return "permission denied";
        case EROFS:
            return "the file system is read-only";
        case ENOSPC:
            return "there is no space left";
        case ENAMETOOLONG:
            return "the name is too long";
        case EFBIG:
            return "the file would be too large";
        default:
            return std::generic_category().message(error);
    }
}

std::unique_ptr<std::istream> OpenFile(const fs::path& path) {
    if (IsStandardInput(path)) {
        const std::vector<uint8_t>& bytes = StandardInput();
        return std::make_unique<std::istringstream>(std::string(bytes.begin(), bytes.end()));
    }
    CheckReadable(path);
    return std::make_unique<std::ifstream>(path, std::ios::binary);
}

std::vector<uint8_t> ReadWholeFile(const fs::path& path, size_t most) {
    if (IsStandardInput(path)) {
        if (StandardInput().size() > most) Fail("standard input", "is too large");
        return StandardInput();
    }
    const Descriptor file(OpenToRead(path));
    return ReadAll(file, path, most);
}

void CheckReadable(const fs::path& path) {
    const Descriptor file(OpenToRead(path));
}

std::string ReadWholeText(const fs::path& path) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path);
    return {bytes.begin(), bytes.end()};
}

bool IsSameFile(const fs::path& a, const fs::path& b) {
    std::error_code ignored;
    const bool hasFirst = fs::exists(a, ignored), hasSecond = fs::exists(b, ignored);
    if (hasFirst != hasSecond) return false;
    if (hasFirst) return fs::is_regular_file(a, ignored) && fs::equivalent(a, b, ignored);
    const fs::path first = fs::absolute(WithoutLinks(a)), second = fs::absolute(WithoutLinks(b));
    return first.filename() == second.filename() &&
           fs::equivalent(first.parent_path(), second.parent_path(), ignored);
}

void RefuseSharedFiles(std::span<const NamedFile> outputs, std::span<const NamedFile> inputs) {
    const auto refuse = [](const NamedFile& output, const NamedFile& other) {
        if (output.path.empty() || other.path.empty() || IsStandardOutput(output.path)) return;
        if (!IsSameFile(output.path, other.path)) return;
        throw FileClash(output.role + " " + Utf8FromPath(output.path) + " is the same file as " + other.role +
                        " " + Utf8FromPath(other.path) + "; name another one");
    };
    for (size_t i = 0; i < outputs.size(); ++i) {
        for (const NamedFile& input : inputs) refuse(outputs[i], input);
        for (size_t k = i + 1; k < outputs.size(); ++k) refuse(outputs[i], outputs[k]);
    }
}

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
    if (OpenStream()) return;
    target_ = WithoutLinks(path_);
    OpenTemporary();
}

void OutputFile::Take(int descriptor) {
    file_.reset(fdopen(descriptor, "wb"));
    if (file_ == nullptr) Fail(path_, "can't be written: " + FileReason(errno));
    setvbuf(file_.get(), nullptr, _IOFBF, kBuffer);
}

// Opens what is no regular file. Returns false if the path names none of that kind.
bool OutputFile::OpenStream() {
    if (IsStandardOutput(path_)) {
#ifdef _WIN32
        _setmode(kOutputDescriptor, _O_BINARY);
#endif
        Take(dup(kOutputDescriptor));
        return true;
    }
    Descriptor found(Open(path_, O_WRONLY));
    const int error = errno;
    // Most files are new, and each question costs a call, which takes long under Wine.
    if (!found.IsOpen() && error == ENOENT) return false;
    RefuseFolder(path_);
    std::error_code ignored;
    if (!found.IsOpen() && fs::is_other(path_, ignored))
        Fail(path_, "can't be written: " + FileReason(error));
    struct stat status = {};
    if (!found.IsOpen() || fstat(found.Number(), &status) != 0 || S_ISREG(status.st_mode)) return false;
    Take(found.Release());
    return true;
}

void OutputFile::OpenTemporary() {
    static std::atomic<int> next = 0;
    int error = EEXIST;
    for (int i = 0; i < kMaxTemporaries && error == EEXIST; ++i) {
        // A short name of its own: the file's may be as long as a name can be.
        temporary_ = target_.parent_path() /
                     (".orvex-" + std::to_string(getpid()) + "-" + std::to_string(next++) + ".part");
        const int descriptor = Open(temporary_, O_WRONLY | O_CREAT | O_EXCL);
        if (descriptor >= 0) {
            guard_.emplace(temporary_, descriptor);
            Take(descriptor);
            return;
        }
        error = errno;
    }
    Fail(path_, "can't be written: " + (error == ENOENT ? "there is no such folder" : FileReason(error)));
}

OutputFile::~OutputFile() {
    file_.reset();
    std::error_code ignored;
    if (!completed_ && !temporary_.empty()) fs::remove(temporary_, ignored);
}

bool OutputFile::Write(std::string_view bytes) {
    if (error_ != 0) return false;
    errno = 0;
    if (fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
        error_ = errno != 0 ? errno : EIO;
        return false;
    }
    size_ += bytes.size();
    return true;
}

void OutputFile::CheckWrites() const {
    if (error_ != 0) Fail(path_, "can't be written: " + FileReason(error_));
}

void OutputFile::Complete() {
    CheckWrites();
    // Wine's fclose() does not tell that the flush in it failed.
    if (fflush(file_.get()) != 0 || fclose(file_.release()) != 0) {
        Fail(path_, "can't be written: " + FileReason(errno));
    }
    std::error_code failure;
    if (!temporary_.empty()) fs::rename(temporary_, target_, failure);
    if (failure) Fail(path_, "can't be replaced: " + FileReason(failure.default_error_condition().value()));
    completed_ = true;
    guard_.reset();
}

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
    OutputFile file(path);
    file.Write(bytes);
    file.Complete();
}

void WriteWholeFile(const fs::path& path, std::span<const uint8_t> bytes) {
    WriteWholeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace orvex::tools
