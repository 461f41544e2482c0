#include "color/profile_colors.h"

#include <cstring>

#include "color/color_cache.h"
#include "color/ink.h"

namespace {

constexpr uint32_t kHalfGridSteps = 128;  // even components: 0, 2, ..., 254

// One encoding of the colours.
struct ColorLayout {
    uint8_t version;
    int prepared;        // the byte that the cache is filled with beforehand
    size_t variantSize;  // in bytes
    bool (*read)(BlockReader& file, uint32_t* cache);
};

constexpr int kNotPrepared = -1;

// Version 1: all entries.
bool ReadEntries(BlockReader& file, uint32_t* cache) {
    constexpr size_t kSize = kCacheEntries * sizeof *cache;
    const size_t came = file.Read(cache, kSize);
    if (came == kSize) return true;
    LogError("error reading profile %d<>%d", came, kSize);
    return false;
}

// Version 2: a plane of bytes for each ink, from Y down to K. A block of the cache is put together out of all
// four planes while the processor's own caches hold it.
bool ReadPlanes(BlockReader& file, uint32_t* cache) {
    constexpr size_t kBlock = 32768;  // entries
    const int64_t firstPlane = file.Position();
    for (size_t first = 0; first < kCacheEntries; first += kBlock) {
        uint32_t* entries = cache + first;
        memset(entries, 0, kBlock * sizeof *entries);
        for (size_t plane = 0; plane < size_t{kInks}; ++plane) {
            file.Seek(firstPlane + static_cast<int64_t>(plane * kCacheEntries + first));
            const size_t shift = 24 - 8 * plane;
            for (size_t read = 0; read < kBlock;) {
                const std::span<const uint8_t> bytes = file.Take(kBlock - read);
                if (bytes.empty()) break;
                for (size_t i = 0; i < bytes.size(); ++i) entries[read + i] |= uint32_t{bytes[i]} << shift;
                read += bytes.size();
            }
        }
    }
    return true;
}

// Version 3: the entries of all-even colours, a run of blues for each red and green.
bool ReadHalfGridEntries(BlockReader& file, uint32_t* cache) {
    for (uint32_t red = 0; red < kHalfGridSteps; ++red) {
        for (uint32_t green = 0; green < kHalfGridSteps; ++green) {
            uint32_t run[kHalfGridSteps];
            uint32_t* entries = cache + ColorIndex(2 * red, 2 * green, 0);
            const size_t came = file.Read(run, sizeof run) / sizeof *run;
            for (size_t blue = 0; blue < came; ++blue) entries[2 * blue] = run[blue];
        }
    }
    return true;
}

// Version 4: a plane of bytes of the all-even colours for each ink, from Y down to K.
bool ReadHalfGridPlanes(BlockReader& file, uint32_t* cache) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        for (uint32_t red = 0; red < kHalfGridSteps; ++red) {
            for (uint32_t green = 0; green < kHalfGridSteps; ++green) {
                uint8_t run[kHalfGridSteps];
                uint32_t* entries = cache + ColorIndex(2 * red, 2 * green, 0);
                const size_t came = file.Read(run, sizeof run);
                for (size_t blue = 0; blue < came; ++blue) {
                    uint32_t& entry = entries[2 * blue];
                    entry = (entry & ~(0xFFu << shift)) | uint32_t{run[blue]} << shift;
                }
            }
        }
    }
    return true;
}

// Version 5: the grid points. Deliberate: in the reverse of the other versions' order, blue slowest and red
// fastest.
bool ReadGrid(BlockReader& file, uint32_t* cache) {
    for (int blue = 0; blue < kGridSteps; ++blue) {
        for (int green = 0; green < kGridSteps; ++green) {
            uint32_t run[kGridSteps];
            const int came = static_cast<int>(file.Read(run, sizeof run) / sizeof *run);
            for (int red = 0; red < came; ++red) {
                cache[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))] = run[red];
            }
        }
    }
    return true;
}

constexpr size_t kAllColors = kCacheEntries * kInks;
constexpr size_t kHalfGrid = size_t{kHalfGridSteps} * kHalfGridSteps * kHalfGridSteps * kInks;
constexpr size_t kGridOnly = kGridPoints * kInks;

constexpr ColorLayout kLayouts[] = {
    {kEntries, kNotPrepared, kAllColors, ReadEntries},
    {kPlanes, kNotPrepared, kAllColors, ReadPlanes},
    {kHalfGridEntries, 0x00, kHalfGrid, ReadHalfGridEntries},
    {kHalfGridPlanes, 0xFF, kHalfGrid, ReadHalfGridPlanes},
    {kGrid, 0xFF, kGridOnly, ReadGrid},
};

const ColorLayout* FindLayout(uint8_t version) {
    for (const ColorLayout& layout : kLayouts) {
        if (layout.version == version) return &layout;
    }
    return nullptr;
}

}  // namespace

bool ReadProfileColors(BlockReader& file, const ProfileHeader& header, bool at600Dpi, uint32_t* cache) {
    const ColorLayout* layout = FindLayout(header.version);
    if (layout == nullptr) {
        LogError("non supported profile version");
        return false;
    }
    const int64_t start = file.Position();
    const int64_t found = header.fileSize - start;
    const int64_t variantSize = static_cast<int64_t>(layout->variantSize);
    if (found != 2 * variantSize) {
        LogError("invalid file size %d<>%d", found, 2 * variantSize);
        return false;
    }
    if (layout->prepared != kNotPrepared) memset(cache, layout->prepared, kCacheEntries * sizeof *cache);
    const int64_t firstRead = at600Dpi ? start : start + variantSize;
    file.Seek(firstRead);
    if (!layout->read(file, cache)) return false;
    // Fewer colours than there should be are taken as they are, but not those of a file that can't be read.
    if (file.Failed())
        LogError("error reading profile %d<>%d", file.Position() - firstRead, layout->variantSize);
    return !file.Failed();
}
