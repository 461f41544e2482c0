#include "tests/system/endurance/helper/turn_book.h"

#include <stdexcept>

#ifdef _WIN32
#include "platform/windows.h"
#endif

namespace orvex {

#ifdef _WIN32

SharedTurnBook::SharedTurnBook(const std::string& name)
    : mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(TurnBook),
                                  name.c_str())) {
    if (mapping_ != nullptr) {
        book_ = static_cast<TurnBook*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, sizeof *book_));
    }
    if (book_ == nullptr) throw std::runtime_error("no shared memory for the book " + name);
}

SharedTurnBook::~SharedTurnBook() {
    UnmapViewOfFile(book_);
    CloseHandle(mapping_);
}

#else

SharedTurnBook::SharedTurnBook(const std::string&) : own_(new TurnBook{}), book_(own_.get()) {}
SharedTurnBook::~SharedTurnBook() = default;

#endif

}  // namespace orvex
