// A watch over the files that the driver opens, which can make their reading end early.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>

#include "tests/driver/failing_calls.h"
#include "tools/host/import_patch.h"

namespace orvex {

// Counts the files and searches that the code linked into this program opens. One watch lives at a time.
class FileWatch {
  public:
    FileWatch() {
        open.clear();
        opened = reads = 0;
        left = UINT64_MAX;
        createA = reinterpret_cast<decltype(&CreateFileA)>(createAPatch_.Original());
        createW = reinterpret_cast<decltype(&CreateFileW)>(createWPatch_.Original());
        findFirst = reinterpret_cast<decltype(&FindFirstFileW)>(findFirstPatch_.Original());
        close = reinterpret_cast<decltype(&CloseHandle)>(closePatch_.Original());
        findClose = reinterpret_cast<decltype(&FindClose)>(findClosePatch_.Original());
        read = reinterpret_cast<decltype(&ReadFile)>(readPatch_.Original());
    }

    // Return the number of files and searches that are open now, and of those opened so far.
    size_t Open() const { return open.size(); }
    size_t Opened() const { return opened; }
    // Returns the number of reads so far.
    size_t Reads() const { return reads; }
    // Makes every file end after `bytes` more bytes are read in all.
    void EndAfter(uint64_t bytes) const { left = bytes; }

  private:
    inline static std::set<HANDLE> open;
    inline static size_t opened;
    inline static size_t reads;
    inline static uint64_t left;
    inline static decltype(&CreateFileA) createA;
    inline static decltype(&CreateFileW) createW;
    inline static decltype(&FindFirstFileW) findFirst;
    inline static decltype(&CloseHandle) close;
    inline static decltype(&FindClose) findClose;
    inline static decltype(&ReadFile) read;

    static HANDLE Opening(HANDLE handle) {
        if (handle != INVALID_HANDLE_VALUE) {
            open.insert(handle);
            ++opened;
        }
        return handle;
    }
    static HANDLE WINAPI WatchedCreateA(LPCSTR path, DWORD access, DWORD share,
                                        LPSECURITY_ATTRIBUTES attributes, DWORD disposition, DWORD flags,
                                        HANDLE pattern) {
        return Opening(createA(path, access, share, attributes, disposition, flags, pattern));
    }
    static HANDLE WINAPI WatchedCreateW(LPCWSTR path, DWORD access, DWORD share,
                                        LPSECURITY_ATTRIBUTES attributes, DWORD disposition, DWORD flags,
                                        HANDLE pattern) {
        return Opening(createW(path, access, share, attributes, disposition, flags, pattern));
    }
    static HANDLE WINAPI WatchedFindFirst(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
        return Opening(findFirst(pattern, data));
    }
    static BOOL WINAPI WatchedClose(HANDLE handle) {
        open.erase(handle);
        return close(handle);
    }
    static BOOL WINAPI WatchedFindClose(HANDLE handle) {
        open.erase(handle);
        return findClose(handle);
    }
    static BOOL WINAPI WatchedRead(HANDLE file, LPVOID buffer, DWORD size, LPDWORD came,
                                   LPOVERLAPPED overlapped) {
        ++reads;
        const BOOL done =
            read(file, buffer, static_cast<DWORD>(std::min<uint64_t>(size, left)), came, overlapped);
        if (left != UINT64_MAX) left -= *came;
        return done;
    }

    tools::ImportPatch createAPatch_{nullptr, "CreateFileA", reinterpret_cast<void*>(&WatchedCreateA)};
    tools::ImportPatch createWPatch_{nullptr, "CreateFileW", reinterpret_cast<void*>(&WatchedCreateW)};
    tools::ImportPatch findFirstPatch_{nullptr, "FindFirstFileW", reinterpret_cast<void*>(&WatchedFindFirst)};
    tools::ImportPatch closePatch_{nullptr, "CloseHandle", reinterpret_cast<void*>(&WatchedClose)};
    tools::ImportPatch findClosePatch_{nullptr, "FindClose", reinterpret_cast<void*>(&WatchedFindClose)};
    tools::ImportPatch readPatch_{nullptr, "ReadFile", reinterpret_cast<void*>(&WatchedRead)};
};

}  // namespace orvex
