#include "tools/orvexprint/shadow_file.h"

#include <algorithm>

namespace orvex::tools::print {

namespace {

// The file begins with a signature. Offsets into it follow one another, for texts but for the device mode:
// user, user to notify, document, port, printer, driver, device mode, print processor, data type.
constexpr size_t kDocument = 2;
constexpr size_t kDeviceMode = 6;
constexpr size_t kDataType = 8;
constexpr size_t kOffsets = 9;

struct Layout {
    uint32_t signature;
    uint32_t leastHeader;  // size that the header states at least; 0: it states none
    size_t offsetsAt;
    size_t offsetSize;  // bytes
};

// Versions that share a signature differ in the size of their header, since the offsets of 64-bit systems
// have eight bytes. The longer ones come first.
constexpr Layout kLayouts[] = {
    {0x5123, 160, 24, 8},  // Windows 8.1 to 11
    {0x4968, 160, 24, 8},  // Windows Vista to 8, 64 bits
    {0x4967, 160, 24, 8},  // Windows XP and Server 2003, 64 bits
    {0x5123, 0, 20, 4},    // 32 bits
    {0x4968, 0, 20, 4},    // Windows Server 2003 to 8, 32 bits
    {0x4967, 0, 20, 4},    // Windows 2000 and XP
    {0x4966, 0, 16, 4},    // Windows NT, whose header does not state its size
};
constexpr size_t kHeaderSizeAt = 4;

const Layout* FindLayout(ByteSpan bytes) {
    if (bytes.size() < kHeaderSizeAt + 4) return nullptr;
    for (const Layout& layout : kLayouts) {
        if (Number32(bytes, 0) == layout.signature && Number32(bytes, kHeaderSizeAt) >= layout.leastHeader &&
            IsWithin(layout.offsetsAt, kOffsets * layout.offsetSize, bytes.size())) {
            return &layout;
        }
    }
    return nullptr;
}

}  // namespace

bool IsShadowFile(ByteSpan bytes) {
    return FindLayout(bytes) != nullptr;
}

ShadowFile ReadShadowFile(ByteSpan bytes) {
    const Layout* const layout = FindLayout(bytes);
    if (layout == nullptr) throw SpoolError("is no shadow file of a known version of Windows");
    const auto offset = [&](size_t number) -> uint64_t {
        const size_t at = layout->offsetsAt + number * layout->offsetSize;
        return layout->offsetSize == 8 ? Number64(bytes, at) : Number32(bytes, at);
    };
    const auto text = [&](size_t number) {
        return offset(number) == 0 ? std::string() : TextAt(bytes, offset(number)).value_or("");
    };
    ShadowFile shadow = {text(kDocument), text(kDataType), {}};
    const uint64_t at = offset(kDeviceMode);
    if (at == 0) return shadow;
    if (at > bytes.size()) throw SpoolError("is damaged: its device mode is not within it");
    const ByteSpan rest = bytes.subspan(static_cast<size_t>(at));
    // The driver reads the sizes of a device mode that says to end before them, too.
    const size_t size = std::max(DeviceModeSize(rest), kLeastDeviceMode);
    shadow.deviceMode = CheckedDeviceMode(rest, "the device mode").first(size);
    return shadow;
}

}  // namespace orvex::tools::print
