// The order in which writers of all processes took the log's mutex: the oracle for the log's lines.
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

    std::atomic<uint32_t> stop;       // set to end the writers
    std::atomic<uint32_t> attempted;  // lines that writers tried to write
    std::atomic<uint32_t> refused;    // waits for the mutex that failed
    std::atomic<uint32_t> taken;      // waits that succeeded
    Turn turns[kMaxTurns];            // those, in order; the mutex itself guards them
};

// A book that starts empty. On Windows all processes that open that name share it.
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
