#include "tools/orvexprint/device_mode_file.h"

#include <gmock/gmock.h>

#include "tests/tools/common/made_metafile.h"
#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexprint/made_export.h"
#include "tests/tools/orvexprint/made_shadow.h"
#include "tools/orvexprint/registry_export.h"

namespace orvex::tools::print {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

ByteSpan AsBytes(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::vector<std::string> ModesIn(const std::string& file) {
    std::vector<std::string> modes;
    for (const StoredDeviceMode& each : DeviceModesIn(AsBytes(file)))
        modes.emplace_back(each.bytes.begin(), each.bytes.end());
    return modes;
}

std::vector<std::string> PlacesIn(const std::string& file) {
    std::vector<std::string> places;
    for (const StoredDeviceMode& each : DeviceModesIn(AsBytes(file))) places.push_back(each.where);
    return places;
}

std::string ExportError(const std::string& values) {
    return ThrownText<RegistryError>([&] { DeviceModesIn(AsBytes(MakeExport("P", values))); });
}

// Returns the bytes of a device mode of 224, told apart by their first letter.
std::string Mode(char letter) {
    return letter + ByteMaker().Zeros(67).U16(220).U16(4).Zeros(152).Bytes();
}

}  // namespace

TEST(DeviceModeFile, IsAnyBytesThatAreNothingElse) {
    EXPECT_THAT(ModesIn("any"), ElementsAre("any"));
    EXPECT_THAT(PlacesIn("any"), ElementsAre(""));
    EXPECT_THAT(ModesIn(""), IsEmpty());
}

TEST(DeviceModeFile, IsASpoolFileWithAllItsDeviceModes) {
    MadeSpoolFile made("", "");
    made.DeviceMode(Mode('a'));
    const size_t second = made.DeviceMode("short");
    EXPECT_THAT(ModesIn(made.File()), ElementsAre(Mode('a'), "short")) << "without any page";
    EXPECT_EQ(PlacesIn(made.File())[1], "EMRI_DEVMODE at offset " + std::to_string(second));
    const std::string cut = ByteMaker().U32(0x10000).U32(99).U32(0).U32(0).Bytes();
    EXPECT_THAT(ThrownText([&] { ModesIn(cut); }), HasSubstr("its header has a size of 99 bytes"));
}

TEST(DeviceModeFile, IsAShadowFile) {
    const std::string shadow = MakeShadowFile(kShadowKinds[0], "Name", "NT EMF 1.008", Mode('a'));
    EXPECT_THAT(ModesIn(shadow), ElementsAre(Mode('a')));
    EXPECT_EQ(PlacesIn(shadow)[0], "at offset " + std::to_string(shadow.find("a" + Mode('a').substr(1))));
    EXPECT_THAT(ModesIn(MakeShadowFile(kShadowKinds[0], "Name", "RAW", "")), IsEmpty());
}

TEST(DeviceModeFile, IsARegistryExport) {
    const std::string values = "\"Name\"=\"Default DevMode\"\r\n" + BinaryValue("Security", "abc") +
                               BinaryValue("Default DevMode", Mode('a'));
    for (const std::string& file : {MakeExport("Label 1", values), AsUtf16File(MakeExport("Label 1", values)),
                                    "\xEF\xBB\xBF" + MakeExport("Label 1", values)}) {
        EXPECT_THAT(ModesIn(file), ElementsAre(Mode('a')));
        EXPECT_THAT(PlacesIn(file),
                    ElementsAre("\"Default DevMode\" of " + std::string(kPrintersKey) + "Label 1, line 6"));
    }
    const std::string old = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Printers\\DevModePerUser]\n" +
                            BinaryValue("\\\\\\\\server\\\\A \\\"b\\\"", Mode('u'), "hex(3):");
    EXPECT_THAT(ModesIn(old), ElementsAre(Mode('u')));
    EXPECT_THAT(PlacesIn(old)[0], HasSubstr("\"\\\\server\\A \"b\"\" of HKEY_CURRENT_USER\\Printers\\"));
}

TEST(DeviceModeFile, TakesOnlyBinaryDeviceModesOfAnExport) {
    EXPECT_THAT(ModesIn(MakeExport("P",
                                   "\"Default DevMode\"=dword:00000001\r\n\"DevMode\"=hex:\r\n"
                                   "\"DevMode\"=-\r\n@=hex:01\r\n\"DevMode\r\n\"DevMode\"\r\n")),
                IsEmpty());
    EXPECT_THAT(
        ModesIn(MakeExport("P", "; \"DevMode\"=hex:01\r\n  \"devmode\" = hex: 1, aB ,\\\r\n\t0C\r\n")),
        ElementsAre("\x01\xAB\x0C"));
}

TEST(DeviceModeFile, NamesTheLineInWhichAnExportIsDamaged) {
    EXPECT_EQ(ExportError("\"DevMode\"=hex:01,\\\r\n  0g\r\n"),
              "is damaged: line 5, in the value \"DevMode\": a byte is no hexadecimal number");
    for (const char* bytes : {"001", "1,,2", "-1", "0x1", "1 2", ",1"})
        EXPECT_THAT(ExportError("\"DevMode\"=hex:" + std::string(bytes)), HasSubstr("no hexadecimal number"));
    const std::string cut = std::string(kExportStart) + "\"DevMode\"=hex:01,\\";
    EXPECT_EQ(ThrownText([&] { ModesIn(cut); }),
              "is damaged: line 3, in the value \"DevMode\": the file ends in the middle of its bytes");
}

TEST(DeviceModeFile, IsFilledUpToTheSizeThatItSays) {
    const auto filled = [](const std::string& bytes) { return WithDeclaredSize(AsBytes(bytes)).size(); };
    EXPECT_EQ(filled("short"), 72u);
    EXPECT_EQ(filled(Mode('a').substr(0, 100)), 224u);
    EXPECT_EQ(filled(ByteMaker().Zeros(68).U16(220).Bytes()), 220u);
    EXPECT_EQ(filled(Mode('a') + "more"), 228u);
}

}  // namespace orvex::tools::print
