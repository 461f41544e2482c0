#include "engine/stream_writer.h"

#include <algorithm>
#include <cstring>

namespace orvex::engine {

using namespace print_stream;

uint8_t* StreamWriter::Reserve(size_t size) {
    if (capacity_ - size_ < size) {
        const size_t capacity = std::max(2 * capacity_, size_ + size);
        std::unique_ptr<uint8_t[]> larger(new uint8_t[capacity]);
        if (size_ > 0) memcpy(larger.get(), bytes_.get(), size_);
        bytes_ = std::move(larger);
        capacity_ = capacity;
    }
    return bytes_.get() + size_;
}

void StreamWriter::PutNumber(uint32_t number) {
    StoreNumber(Reserve(sizeof number), number);
    Commit(sizeof number);
}

void StreamWriter::PutText(std::string_view text) {
    memcpy(Reserve(text.size()), text.data(), text.size());
    Commit(text.size());
}

void StreamWriter::PutRecord(RecordType type, std::initializer_list<uint32_t> numbers) {
    BeginRecord(type);
    for (const uint32_t number : numbers) PutNumber(number);
    EndRecord();
}

void StreamWriter::BeginRecord(RecordType type) {
    recordStart_ = size_;
    inRecord_ = true;
    *Reserve(kRecordHeaderSize) = static_cast<uint8_t>(type);
    Commit(kRecordHeaderSize);
}

void StreamWriter::EndRecord() {
    inRecord_ = false;
    if (RecordSize() == 0) {
        size_ = recordStart_;
        return;
    }
    uint8_t* record = bytes_.get() + recordStart_;
    StoreNumber(record + 1, static_cast<uint32_t>(RecordSize()));
    PutNumber(Adler32(record, size_ - recordStart_));
}

bool StreamWriter::Flush() {
    if (size_ == 0) return true;
    const auto length = static_cast<uint32_t>(size_);
    size_ = 0;
    return output_(bytes_.get(), length, context_) != 0;
}

}  // namespace orvex::engine
