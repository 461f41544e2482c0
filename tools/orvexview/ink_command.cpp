#include "tools/orvexview/ink_command.h"
#include "tools/common/command_line.h"

#include <algorithm>

#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/ink_prices.h"
#include "tools/orvexview/ink_use.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kDescription =
    "Counts the ink of a print file in milliliters and, once prices are known, its cost.\n"
    "\n"
    "An amount of 255 in a pixel is one drop of the size that --drop gives, 6 picoliters unless told "
    "otherwise; smaller\n"
    "amounts are that part of a drop. Purge bars, and the pattern that keeps nozzles wet where nothing is "
    "printed, are counted\n"
    "apart. Drop and prices are remembered: in %APPDATA%\\orvexview.json, natively in "
    "~/.config/orvexview.json.";

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexview job.prn --ink --drop 6pl --price K=80,C=95,M=95,Y=95/l\n"
    "  orvexview job.prn --ink            the next time\n"
    "\n"
    "Exit status: 0 when all went well; 1 when the file is not sound (what can be read is counted) or "
    "something can't be\n"
    "read or written; 2 for a wrong command line.";

constexpr double kMillilitersPerPicoliter = 1e-9;
constexpr double kMillilitersPerLiter = 1000;
constexpr double kAmountsPerDrop = 255;
constexpr int kDecimals = 6;  // a purge bar takes a hundred-thousandth of a milliliter

using InkSums = std::array<uint64_t, kInks>;

InkSums SumOf(const InkUse& use) {
    InkSums sums = {};
    for (int ink = 0; ink < kInks; ++ink) sums[ink] = use.label[ink] + use.purgeBar[ink] + use.pattern[ink];
    return sums;
}

class InkReport {
  public:
    InkReport(const PrintFile& file, const InkPrices& prices) : prices_(prices) {
        const InkModel model(file.dpi);
        copies_ = static_cast<uint64_t>(std::max(file.header.FindNumber("COPIES").value_or(1), 1));
        for (const PrintedPage& page : file.pages) {
            const PagePlacement placement = PlacePage(file, page);
            InkCounter counter(placement, HasPattern(file.header));
            Drawing drawing;
            drawing.area = ImageArea(placement);
            drawing.users = {&counter};
            DrawPage(model, page, placement, drawing);
            pages_.push_back(counter.Use());
            all_.Add(counter.Use());
        }
    }

    std::string Text() const {
        const std::string text = PageTable() + "\n" + JobTable() + "\n";
        if (prices_.AreComplete()) return text + DropText();
        return text + DropText() + "No cost: --price K=80,C=95,M=95,Y=95/l tells the prices of all inks.\n";
    }

  private:
    double Milliliters(double amounts) const {
        return amounts / kAmountsPerDrop * prices_.dropPicoliters * kMillilitersPerPicoliter;
    }

    // Returns the cells of a row: milliliters of each ink, of all, and the cost. The sums count `times`.
    std::vector<std::string> Row(std::string name, const InkSums& sums, double times) const {
        std::vector<std::string> cells = {std::move(name)};
        double total = 0;
        double cost = 0;
        for (int ink = 0; ink < kInks; ++ink) {
            const double milliliters = Milliliters(static_cast<double>(sums[ink])) * times;
            cells.push_back(DecimalText(milliliters, kDecimals));
            total += milliliters;
            cost += milliliters / kMillilitersPerLiter * prices_.perLiter[ink].value_or(0);
        }
        cells.push_back(DecimalText(total, kDecimals));
        cells.push_back(prices_.AreComplete() ? DecimalText(cost, kDecimals) : "-");
        return cells;
    }

    static std::vector<std::string> Titles(const char* first) {
        return {first, "K ml", "C ml", "M ml", "Y ml", "all ml", "cost"};
    }

    std::string PageTable() const {
        Table table(Titles("Page"));
        for (size_t i = 0; i < pages_.size(); ++i) {
            table.Add(Row(std::to_string(i + 1), SumOf(pages_[i]), 1));
        }
        return table.Text();
    }

    std::string JobTable() const {
        Table table(Titles("Job"));
        const auto copies = static_cast<double>(copies_);
        const auto pages = static_cast<double>(std::max<size_t>(pages_.size(), 1));
        table.Add(Row("labels themselves", all_.label, copies));
        table.Add(Row("purge bars", all_.purgeBar, copies));
        table.Add(Row("blank pattern", all_.pattern, copies));
        table.Add(Row("all of " + std::to_string(copies_) + (copies_ == 1 ? " copy" : " copies"), SumOf(all_),
                      copies));
        table.Add(Row("mean label", SumOf(all_), 1 / pages));
        table.Add(Row("thousand labels", SumOf(all_), 1000 / pages));
        return table.Text();
    }

    std::string DropText() const {
        return "A drop has " + DecimalText(prices_.dropPicoliters, 1) + " picoliters.\n";
    }

    const InkPrices& prices_;
    uint64_t copies_ = 1;
    std::vector<InkUse> pages_;
    InkUse all_;
};

}  // namespace

bool IsInkCommand(const std::vector<std::string>& arguments) {
    return HasOption(arguments, "--ink");
}

int RunInkCommand(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexview", kDescription, "FILE --ink [options]", kExamples, "--ink --help");
    line.Files("FILE", "", "The print file");
    line.Require("FILE");
    line.Flag("--ink", "Counts the ink");
    line.Text("--drop", "6pl", "The size of a drop in picoliters, from now on");
    line.Text("--price", "K=80,C=95,M=95,Y=95/l",
              "The prices of inks for a liter, from now on; inks not named keep theirs");
    if (!line.Read(arguments, out)) return 0;
    const std::string file = line.Value("FILE").value_or("");
    const std::optional<std::string> drop = line.Value("--drop");
    const std::optional<std::string> price = line.Value("--price");
    const std::filesystem::path path = InkPricesPath();
    InkPrices prices = LoadInkPrices(path);
    if (drop) TakeDrop(*drop, prices);
    if (price) TakePrices(*price, prices);
    const ReadablePart part = ReadReadablePart(file);
    if (drop || price) SaveInkPrices(prices, path);
    out << InkReport(part.file, prices).Text();
    RequireSound(file, part);
    return 0;
}

}  // namespace orvex::tools::view
