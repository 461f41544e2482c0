#include "driver/profiles/profile_reader.h"

#include <gmock/gmock.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/kit/scratch_folder.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
namespace {

constexpr size_t kFileSize = 100000;

uint8_t ByteAt(size_t place) {
    return static_cast<uint8_t>(place * 31 + place / 251);
}

class BlockReaderTest : public testing::Test {
  protected:
    BlockReaderTest() {
        std::string bytes;
        for (size_t place = 0; place < kFileSize; ++place) bytes += static_cast<char>(ByteAt(place));
        std::ofstream(Path(), std::ios::binary) << bytes;
        reader_ = std::make_unique<BlockReader>(Path().c_str());
    }

    // Reads `size` bytes. Expects that `expected` ones come, those of the file from `place` on, and that the
    // bytes after them stay as they were.
    void ExpectRead(size_t size, size_t place, size_t expected) {
        SCOPED_TRACE(testing::Message() << size << " bytes at " << place);
        std::vector<uint8_t> bytes(size + kFileSize, 0xA5), want = bytes;
        for (size_t i = 0; i < expected; ++i) want[i] = ByteAt(place + i);
        EXPECT_EQ(reader_->Read(bytes.data(), size), expected);
        EXPECT_TRUE(bytes == want);
        EXPECT_EQ(reader_->Position(), static_cast<int64_t>(place + expected));
    }

    std::string Path() const { return (folder_.Path() / "bytes").string(); }

    // Opens the file with another handle.
    OwnedHandle Open(DWORD access, DWORD share) {
        return OwnedHandle(CreateFileA(Path().c_str(), access, share, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    void ExpectNotShared(DWORD access, DWORD share) {
        EXPECT_FALSE(Open(access, share));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    }
    bool CanBeReadBeside(const OwnedHandle& other) {
        EXPECT_TRUE(other);
        return static_cast<bool>(BlockReader(Path().c_str()));
    }

    static constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    ScratchFolder folder_;
    std::unique_ptr<BlockReader> reader_;
};

}  // namespace

TEST_F(BlockReaderTest, ReadsAcrossItsBlocks) {
    EXPECT_EQ(reader_->Size(), static_cast<int64_t>(kFileSize));
    static_assert(BlockReader::kBlock == 8192);
    ExpectRead(8000, 0, 8000);
    ExpectRead(300, 8000, 300);
    ExpectRead(100, 8300, 100);
    ExpectRead(8192, 8400, 8192);
    ExpectRead(40000, 16592, 40000);
    ExpectRead(50000, 56592, 43408);
    ExpectRead(1, kFileSize, 0);
    EXPECT_FALSE(reader_->Failed());
}

namespace {

int readCalls = 0;
void* readFile = nullptr;
BOOL WINAPI CountAndRead(HANDLE file, LPVOID buffer, DWORD size, LPDWORD came, LPOVERLAPPED overlapped) {
    ++readCalls;
    return reinterpret_cast<decltype(&ReadFile)>(readFile)(file, buffer, size, came, overlapped);
}

}  // namespace

TEST_F(BlockReaderTest, ReadsABlockOnlyWhenItNeedsTheNextByte) {
    const ImportPatch patch(nullptr, "ReadFile", reinterpret_cast<void*>(&CountAndRead));
    readFile = patch.Original();
    readCalls = 0;
    ExpectRead(4096, 0, 4096);
    ExpectRead(4096, 4096, 4096);
    ExpectRead(0, 8192, 0);
    EXPECT_EQ(readCalls, 1);
    ExpectRead(1, 8192, 1);
    EXPECT_EQ(readCalls, 2);
}

TEST_F(BlockReaderTest, ReadsFromThePlaceThatItSeeks) {
    ExpectRead(10, 0, 10);
    reader_->Seek(50000);
    ExpectRead(40000, 50000, 40000);  // with nothing buffered, in one piece
    ExpectRead(20, 90000, 20);
    reader_->Seek(5);
    ExpectRead(20, 5, 20);
    reader_->Seek(kFileSize + 7);
    ExpectRead(20, kFileSize + 7, 0);
    EXPECT_FALSE(reader_->Failed());
}

TEST_F(BlockReaderTest, ReadsNoMoreAfterAFailedRead) {
    {
        const ImportPatch failure(nullptr, "ReadFile",
                                  reinterpret_cast<void*>(+[](HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED)
                                                               WINAPI -> BOOL { return FALSE; }));
        ExpectRead(10, 0, 0);
    }
    EXPECT_TRUE(reader_->Failed());
    ExpectRead(10, 0, 0);
    ExpectRead(40000, 0, 0);
}

TEST_F(BlockReaderTest, ReadsNoMoreAfterAFailedSeek) {
    {
        const ImportPatch failure(nullptr, "SetFilePointerEx",
                                  reinterpret_cast<void*>(+[](HANDLE, LARGE_INTEGER, PLARGE_INTEGER, DWORD)
                                                               WINAPI -> BOOL { return FALSE; }));
        reader_->Seek(5);
    }
    EXPECT_TRUE(reader_->Failed());
    ExpectRead(10, 5, 0);
}

TEST_F(BlockReaderTest, ReadsAFileThatIsOpenForWriting) {
    reader_.reset();
    EXPECT_TRUE(CanBeReadBeside(Open(GENERIC_WRITE, kShareAll)));
    EXPECT_TRUE(CanBeReadBeside(Open(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ)));
}

TEST_F(BlockReaderTest, DoesNotReadAFileThatIsOpenForDeletionOrNotShared) {
    reader_.reset();
    EXPECT_FALSE(CanBeReadBeside(Open(DELETE, kShareAll)));
    EXPECT_FALSE(CanBeReadBeside(Open(GENERIC_WRITE, FILE_SHARE_WRITE)));
    EXPECT_FALSE(CanBeReadBeside(Open(GENERIC_READ, 0)));
}

TEST_F(BlockReaderTest, SharesItsFileWithReadersAndWritersOnly) {
    EXPECT_TRUE(Open(GENERIC_READ, kShareAll));
    EXPECT_TRUE(Open(GENERIC_WRITE, kShareAll));
    EXPECT_TRUE(Open(GENERIC_WRITE, FILE_SHARE_READ));
    ExpectNotShared(GENERIC_WRITE, FILE_SHARE_WRITE);
    ExpectNotShared(DELETE, kShareAll);
    ExpectRead(10, 0, 10);
}

TEST_F(BlockReaderTest, HasNoSizeWithoutAFile) {
    const BlockReader missing((folder_.Path() / "missing").string().c_str());
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing.Size(), -1);
}

}  // namespace orvex
