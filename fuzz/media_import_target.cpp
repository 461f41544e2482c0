// media.inf: whatever the file holds, the printer has a whole list afterwards, of texts that stand in the
// file, under numbers without a gap; a second import leaves it alone.

#include "config/label_sizes.h"
#include "config/media_import.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "host/wide_text.h"
#include "support/installation.h"
#include "support/text.h"
#include "tests/color/file_watch.h"

namespace {

constexpr size_t kBytesThatCount = 4095;

template <size_t N>
void RequireQuotedIn(std::string_view file, const char (&field)[N]) {
    const std::string_view text = FieldText(field);
    REQUIRE(text.size() < N);
    REQUIRE(file.find("\"" + std::string(text) + "\"") != std::string_view::npos);
}

}  // namespace

void FuzzMediaImport(std::span<const uint8_t> input) {
    const std::string_view file = FuzzInput(input).RestAsText();
    const std::string_view counting = file.substr(0, kBytesThatCount);
    FuzzInstallation().Write("media.inf", file);
    const HeapArray<WCHAR> folder = GetInstallationFolder();

    FuzzPrinter printer;
    const FileWatch watch;
    REQUIRE(ImportMediaFile(printer.Handle(), folder.get()) == 1);
    REQUIRE(ImportMediaFile(nullptr, folder.get()) == 1);

    const std::vector<std::string> numbers = printer.Data().SubKeys("Label Sizes");
    REQUIRE(numbers.empty() || counting.find("[Media]") != std::string_view::npos);
    std::vector<LabelSize> labels(numbers.size());
    uint32_t count = 0;
    const auto room = static_cast<uint32_t>(labels.size());
    REQUIRE(ReadPrinterLabelList(printer.Handle(), labels.data(), room, &count) == ERROR_SUCCESS);
    REQUIRE(count == room);
    for (uint32_t i = 0; i < count; ++i) {
        REQUIRE(labels[i].number == 258 + i);
        RequireQuotedIn(counting, labels[i].name);
        RequireQuotedIn(counting, labels[i].width);
        RequireQuotedIn(counting, labels[i].length);
    }

    const PrinterData before = printer.Data();
    const int again = ImportMediaFile(printer.Handle(), folder.get());
    REQUIRE(again == (count > 0 ? 0 : 1));
    REQUIRE(printer.Data() == before);
    REQUIRE(watch.Open() == 0);
}

Seeds MediaImportSeeds() {
    std::string many = "[Media]\n";
    for (int i = 0; i < 140; ++i) many += "\"x\" \"4\" \"6\" 1\n";
    return {
        "; labels\r\n[Media]\r\n\"Shipping 4 x 6\", \"4\", \"6\", 1\r\n\"Wine\" \"90.5\"\t\"120\" 0 rest\r\n",
        "[Media]\n\"\" \"1234567\" \"0\" -2147483649\n\"a\",\"1\",\"2\" 4294967296",
        "[Media]\n\"" + std::string(63, 'n') + "\"\"1\"\"2\"\n\"12345678\"\n",
        many,
    };
}
