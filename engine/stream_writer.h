// Collects records of the print stream and hands them to the output callback in chunks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "engine/hpcrlib.h"
#include "engine/print_stream.h"

namespace orvex::engine {

class StreamWriter {
  public:
    StreamWriter(HPCRLIB_OutputCallback output, void* context) : output_(output), context_(context) {}

    // Adds plain text, outside of any record.
    void PutText(std::string_view text);

    // Adds a whole record of numbers.
    void PutRecord(print_stream::RecordType type, std::initializer_list<uint32_t> numbers);

    // Begins a record of bytes that the caller writes in place: reserve and commit as often as needed.
    void BeginRecord(print_stream::RecordType type);
    // Returns room for `size` bytes after the pending ones, valid until the next call.
    uint8_t* Reserve(size_t size);
    void Commit(size_t size) { size_ += size; }
    // Ends the record, and drops it if it is empty.
    void EndRecord();

    // Returns the size of the payload, so far, of the record that was begun last.
    size_t RecordSize() const { return size_ - recordStart_ - print_stream::kRecordHeaderSize; }
    bool InRecord() const { return inRecord_; }

    // Hands the pending bytes, if any, to the output callback as one chunk. Returns false if the callback
    // failed.
    bool Flush();

  private:
    void PutNumber(uint32_t number);

    HPCRLIB_OutputCallback output_;
    void* context_;
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_ = 0;
    size_t capacity_ = 0;
    size_t recordStart_ = 0;
    bool inRecord_ = false;
};

}  // namespace orvex::engine
