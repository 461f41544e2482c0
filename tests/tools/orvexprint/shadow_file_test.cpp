#include "tools/orvexprint/shadow_file.h"

#include <gmock/gmock.h>

#include "tests/tools/common/byte_maker.h"
#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexprint/made_shadow.h"

namespace orvex::tools::print {

namespace {

ByteSpan Bytes(const std::string& file) {
    return {reinterpret_cast<const uint8_t*>(file.data()), file.size()};
}

std::string Complaint(const std::string& file) {
    return ThrownText<SpoolError>([&] { ReadShadowFile(Bytes(file)); });
}

const std::string kMode = ByteMaker().Text("mode").Zeros(64).U16(72).U16(3).Text("end").Bytes();

}  // namespace

TEST(ShadowFile, OfEveryVersionHasNameTypeAndDeviceMode) {
    for (const ShadowKind& kind : kShadowKinds) {
        const std::string bytes = MakeShadowFile(kind, "A label", "NT EMF 1.008", kMode);
        const ShadowFile shadow = ReadShadowFile(Bytes(bytes));
        EXPECT_EQ(shadow.document, "A label") << kind.signature;
        EXPECT_EQ(shadow.dataType, "NT EMF 1.008");
        EXPECT_EQ(std::string(shadow.deviceMode.begin(), shadow.deviceMode.end()), kMode)
            << "its own size, whatever follows";
    }
}

TEST(ShadowFile, MayLackADeviceMode) {
    const ShadowFile shadow = ReadShadowFile(Bytes(MakeShadowFile(kShadowKinds[0], "x", "RAW", "")));
    EXPECT_TRUE(shadow.deviceMode.empty());
    EXPECT_EQ(shadow.dataType, "RAW");
}

TEST(ShadowFile, KeepsTheSizesOfADeviceModeThatSaysToEndBeforeThem) {
    const std::string mode = ByteMaker().Zeros(68).U16(10).U16(0).Bytes();
    const std::string bytes = MakeShadowFile(kShadowKinds[0], "x", "x", mode);
    EXPECT_EQ(ReadShadowFile(Bytes(bytes)).deviceMode.size(), 72u);
}

TEST(ShadowFile, IsReadWithinItsEnd) {
    for (const ShadowKind& kind : kShadowKinds) {
        const std::string file = MakeShadowFile(kind, "A label", "NT EMF 1.008", kMode);
        for (size_t size = 0; size < file.size(); ++size) {
            const std::string cut = file.substr(0, size);
            try {
                ReadShadowFile(Bytes(cut));
            } catch (const SpoolError&) {
            }
        }
        const size_t modeAt = kind.offsetsAt + 6 * kind.offsetSize;
        const std::string away = ByteMaker().U32(0xFFFFFFFF).Bytes();
        EXPECT_EQ(Complaint(std::string(file).replace(modeAt, 4, away)),
                  "is damaged: its device mode is not within it");
        const std::string nameless = std::string(file).replace(kind.offsetsAt + 2 * kind.offsetSize, 4, away);
        EXPECT_EQ(ReadShadowFile(Bytes(nameless)).document, "");
    }
    const std::string longer = ByteMaker().Zeros(68).U16(220).U16(0).Bytes();
    EXPECT_THAT(Complaint(MakeShadowFile(kShadowKinds[0], "x", "x", longer)),
                testing::HasSubstr("bytes, and is said to have 220"));
}

TEST(ShadowFile, OfAnotherKindIsRefused) {
    EXPECT_EQ(Complaint("no shadow file at all"), "is no shadow file of a known version of Windows");
    EXPECT_EQ(Complaint(""), "is no shadow file of a known version of Windows");
}

}  // namespace orvex::tools::print
