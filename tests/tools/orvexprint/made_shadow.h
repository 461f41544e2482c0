// Shadow files of the spooler, as its versions lay them out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/tools/common/byte_maker.h"

namespace orvex::tools::print {

struct ShadowKind {
    uint32_t signature;
    uint32_t headerSize;  // 0: the header does not state it
    size_t offsetsAt;
    size_t offsetSize;
};

inline constexpr ShadowKind kShadowKinds[] = {
    {0x5123, 208, 24, 8},  // Windows 10, 64 bits
    {0x4968, 208, 24, 8},  // Windows 7, 64 bits
    {0x4968, 120, 20, 4},  // Windows Server 2003
    {0x4967, 192, 24, 8},  // Windows XP, 64 bits
    {0x5123, 124, 20, 4},  // Windows 10, 32 bits
    {0x4967, 120, 20, 4},  // Windows 2000
    {0x4966, 0, 16, 4},    // Windows NT 4
};

inline std::string MakeShadowFile(const ShadowKind& kind, std::string_view document,
                                  std::string_view dataType, const std::string& deviceMode) {
    constexpr size_t kHeader = 224;
    ByteMaker texts, file;
    texts.Wide(document);
    const size_t typeAt = kHeader + texts.Size();
    texts.Wide(dataType).FillUpTo(8);
    const size_t modeAt = kHeader + texts.Size();
    file.U32(kind.signature);
    if (kind.headerSize != 0) file.U32(kind.headerSize);
    file.U32(0x10).U32(7).U32(1);  // status, job, priority
    file.Zeros(kind.offsetsAt - file.Size());
    const size_t offsets[] = {0, 0, kHeader, 0, 0, 0, deviceMode.empty() ? 0 : modeAt, 0, typeAt};
    for (const size_t offset : offsets) {
        if (kind.offsetSize == 8) {
            file.U64(offset);
        } else {
            file.U32(offset);
        }
    }
    file.Zeros(kHeader - file.Size());
    return file.Text(texts.Bytes()).Text(deviceMode).Text(deviceMode.empty() ? "" : "after").Bytes();
}

}  // namespace orvex::tools::print
