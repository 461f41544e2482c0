#include "tools/orvexview/png_writer.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>

#include "tools/common/number_text.h"

namespace orvex::tools::view {

namespace {

constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr uint8_t kGray = 0;
constexpr uint8_t kColor = 2;
constexpr uint8_t kUnitMeter = 1;
// Data of the tEXt chunk of every picture: a keyword, its terminator and the value. The chunk follows IHDR,
// so that it is found at a fixed offset.
constexpr std::string_view kSoftware("Software\0orvexview", 18);
constexpr size_t kSoftwareOffset = 8 + 25;
constexpr size_t kChunkHeadSize = 8;
constexpr size_t kChunkSize = size_t{64} * 1024;

// The filters that are tried. Those with three neighbors make pictures of pages little smaller, for much
// time.
enum Filter : uint8_t { kNone = 0, kSub = 1, kUp = 2, kFilters };

// Stores a number, the highest byte first.
void StoreNumber(uint8_t* out, uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) *out++ = static_cast<uint8_t>(number >> shift);
}

// Returns the sum of the samples' distances from 0; the filter with the least compresses best.
uint32_t Weight(std::span<const uint8_t> samples) {
    uint32_t sum = 0;
    for (const uint8_t sample : samples) sum += sample < 128 ? sample : 256u - sample;
    return sum;
}

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

}  // namespace

bool IsWrittenPicture(const std::filesystem::path& path) {
    std::string found(kSoftware.size(), '\0');
    std::ifstream file(path, std::ios::binary);
    file.seekg(kSoftwareOffset + kChunkHeadSize);
    file.read(found.data(), static_cast<std::streamsize>(found.size()));
    return found == kSoftware;
}

struct PngWriter::Deflater {
    Deflater() {
        // Filtered lines of pages are runs. Looking for longer matches, too, made the files of labels a quarter smaller and
        // took half as long again.
        constexpr int kMostBits = 15, kUsualMemory = 8;
        if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kMostBits, kUsualMemory, Z_RLE) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Deflater() { deflateEnd(&stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    z_stream stream = {};
};

PngWriter::PngWriter(const std::filesystem::path& path, uint32_t width, uint32_t height, uint32_t channels,
                     double pixelsPerInch)
    : file_(path),
      deflater_(std::make_unique<Deflater>()),
      channels_(channels),
      above_(size_t{width} * channels),
      repeated_(1 + above_.size()),
      candidates_(kFilters, std::vector<uint8_t>(1 + above_.size())),
      compressed_(kChunkSize) {
    repeated_[0] = kUp;
    for (uint8_t filter = kNone; filter < kFilters; ++filter) candidates_[filter][0] = filter;
    deflater_->stream.next_out = compressed_.data();
    deflater_->stream.avail_out = kChunkSize;
    Write(kSignature);
    uint8_t header[13] = {};
    StoreNumber(header, width);
    StoreNumber(header + 4, height);
    header[8] = 8;  // bits of a sample
    header[9] = channels == 1 ? kGray : kColor;
    WriteChunk("IHDR", header);
    WriteChunk("tEXt", BytesOf(kSoftware));
    const auto pixelsPerMeter = static_cast<uint32_t>(std::lround(pixelsPerInch / kMetersPerInch));
    uint8_t density[9] = {};
    StoreNumber(density, pixelsPerMeter);
    StoreNumber(density + 4, pixelsPerMeter);
    density[8] = kUnitMeter;
    WriteChunk("pHYs", density);
}

PngWriter::~PngWriter() = default;

void PngWriter::TakeLines(const Picture& lines) {
    const size_t size = above_.size();
    for (uint32_t y = 0; y < lines.height; ++y) {
        const std::span<const uint8_t> line(lines.At(0, y), size);
        if (std::equal(line.begin(), line.end(), above_.begin())) {
            Compress(repeated_, false);
        } else {
            Compress(Filtered(line), false);
            std::copy(line.begin(), line.end(), above_.begin());
        }
    }
}

void PngWriter::Complete() {
    Compress({}, true);
    WriteChunk("IEND", {});
    file_.Complete();
}

// Returns the line in the filter that suits it best.
std::span<const uint8_t> PngWriter::Filtered(std::span<const uint8_t> line) {
    uint8_t* const none = candidates_[kNone].data() + 1;
    uint8_t* const sub = candidates_[kSub].data() + 1;
    uint8_t* const up = candidates_[kUp].data() + 1;
    std::copy(line.begin(), line.end(), none);
    std::copy_n(line.begin(), channels_, sub);
    for (size_t i = channels_; i < line.size(); ++i) {
        sub[i] = static_cast<uint8_t>(line[i] - line[i - channels_]);
    }
    for (size_t i = 0; i < line.size(); ++i) up[i] = static_cast<uint8_t>(line[i] - above_[i]);
    const std::vector<uint8_t>* best = nullptr;
    uint32_t least = UINT32_MAX;
    for (const std::vector<uint8_t>& candidate : candidates_) {
        const uint32_t weight = Weight(std::span(candidate).subspan(1));
        if (weight >= least) continue;
        least = weight;
        best = &candidate;
    }
    return *best;
}

// Compresses bytes, and writes each full chunk; the `last` time, what remains.
void PngWriter::Compress(std::span<const uint8_t> bytes, bool last) {
    z_stream& stream = deflater_->stream;
    stream.next_in = const_cast<uint8_t*>(bytes.data());
    stream.avail_in = static_cast<unsigned>(bytes.size());
    for (;;) {
        const int result = deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH);
        const bool done = last ? result == Z_STREAM_END : stream.avail_in == 0;
        if (stream.avail_out == 0 || (last && done)) {
            WriteChunk("IDAT", std::span(compressed_).first(kChunkSize - stream.avail_out));
            stream.next_out = compressed_.data();
            stream.avail_out = kChunkSize;
        }
        if (done) return;
    }
}

void PngWriter::WriteChunk(std::string_view type, std::span<const uint8_t> data) {
    uint8_t head[kChunkHeadSize];
    StoreNumber(head, static_cast<uint32_t>(data.size()));
    std::copy_n(type.data(), 4, head + 4);
    uLong checksum = crc32(0, head + 4, 4);
    if (!data.empty()) checksum = crc32(checksum, data.data(), static_cast<uInt>(data.size()));
    uint8_t tail[4];
    StoreNumber(tail, static_cast<uint32_t>(checksum));
    Write(head);
    Write(data);
    Write(tail);
}

void PngWriter::Write(std::span<const uint8_t> bytes) {
    file_.Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    file_.CheckWrites();
}

}  // namespace orvex::tools::view
