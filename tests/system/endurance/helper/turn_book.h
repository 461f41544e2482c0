// Who took the log's mutex, in order, over all processes that write: what the log is held against.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace orvex {

// One line of one writer. Each writer numbers its lines from 1.
struct Turn {
    uint32_t writer;
    uint32_t number;
    bool operator==(const Turn&) const = default;
};

struct TurnBook {
    static constexpr uint32_t kMaxTurns = 1 << 18;

    std::atomic<uint32_t> stop;       // the writers end when it is set
    std::atomic<uint32_t> attempted;  // lines that writers wanted to write
    std::atomic<uint32_t> refused;    // waits for the mutex that did not make the writer its owner
    std::atomic<uint32_t> taken;      // those that did
    Turn turns[kMaxTurns];            // of the latter, in order: the mutex itself guards them
};

// A book that begins empty. On Windows all processes that name it share it.
class SharedTurnBook {
  public:
    explicit SharedTurnBook(const std::string& name);
    ~SharedTurnBook();
    SharedTurnBook(const SharedTurnBook&) = delete;
    SharedTurnBook& operator=(const SharedTurnBook&) = delete;

    TurnBook& operator*() const { return *book_; }
    TurnBook* operator->() const { return book_; }

  private:
#ifdef _WIN32
    void* mapping_ = nullptr;
#else
    std::unique_ptr<TurnBook> own_;
#endif
    TurnBook* book_ = nullptr;
};

}  // namespace orvex
