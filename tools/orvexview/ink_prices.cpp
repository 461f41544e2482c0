#include "tools/orvexview/ink_prices.h"

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tools/common/command_line.h"
#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::view {

namespace {

namespace fs = std::filesystem;

constexpr const char* kDropKey = "dropPicoliters";
constexpr const char* kPricesKey = "pricePerLiter";
constexpr double kMostDrop = 1000;    // picoliters
constexpr double kMostPrice = 1e6;    // for a liter
constexpr size_t kMostBytes = 65536;  // of the file

#ifdef _WIN32
constexpr const char* kNoFolder = "APPDATA is not set, so there is no place for the prices of inks";

fs::path SettingsFolder() {
    const wchar_t* folder = _wgetenv(L"APPDATA");
    return folder == nullptr ? fs::path() : fs::path(folder);
}
#else
constexpr const char* kNoFolder = "HOME is not set, so there is no place for the prices of inks";

fs::path SettingsFolder() {
    const char* folder = getenv("XDG_CONFIG_HOME");
    if (folder != nullptr && *folder == '/') return folder;
    const char* home = getenv("HOME");
    return home == nullptr || *home == '\0' ? fs::path() : fs::path(home) / ".config";
}
#endif

bool IsDrop(double picoliters) {
    return picoliters > 0 && picoliters <= kMostDrop;
}

bool IsPrice(double price) {
    return price >= 0 && price <= kMostPrice;
}

void TakeJson(const nlohmann::json& json, InkPrices& prices) {
    prices.dropPicoliters = json.at(kDropKey);
    if (!IsDrop(prices.dropPicoliters)) throw std::runtime_error(kDropKey);
    for (int ink = 0; ink < kInks; ++ink) {
        const auto price = json.at(kPricesKey).find(std::string(1, kInkLetters[ink]));
        if (price == json.at(kPricesKey).end()) continue;
        prices.perLiter[ink] = price->get<double>();
        if (!IsPrice(*prices.perLiter[ink])) throw std::runtime_error(kPricesKey);
    }
}

}  // namespace

bool InkPrices::AreComplete() const {
    return std::all_of(perLiter.begin(), perLiter.end(), [](const auto& price) { return price.has_value(); });
}

void TakeDrop(const std::string& text, InkPrices& prices) {
    std::string_view number = text;
    if (number.ends_with("pl")) number.remove_suffix(2);
    const std::optional<double> drop = ParseNumber(number);
    if (!drop || !IsDrop(*drop)) throw WrongValue("--drop", text, "picoliters such as 6pl, at most 1000");
    prices.dropPicoliters = *drop;
}

void TakePrices(const std::string& text, InkPrices& prices) {
    std::string_view rest = text;
    if (rest.ends_with("/l")) rest.remove_suffix(2);
    const auto refuse = [&] {
        return WrongValue("--price", text, "prices for a liter such as K=80,C=95,M=95,Y=95/l");
    };
    while (true) {
        const size_t comma = std::min(rest.find(','), rest.size());
        const std::string_view item = rest.substr(0, comma);
        const auto ink = std::find(kInkLetters.begin(), kInkLetters.end(), item.empty() ? '\0' : item[0]);
        if (ink == kInkLetters.end() || item.size() < 3 || item[1] != '=') throw refuse();
        const std::optional<double> price = ParseNumber(item.substr(2));
        if (!price || !IsPrice(*price)) throw refuse();
        prices.perLiter[static_cast<size_t>(ink - kInkLetters.begin())] = *price;
        if (comma == rest.size()) return;
        rest.remove_prefix(comma + 1);
    }
}

fs::path InkPricesPath() {
    const fs::path folder = SettingsFolder();
    if (folder.empty()) throw std::runtime_error(kNoFolder);
    return folder / "orvexview.json";
}

InkPrices LoadInkPrices(const fs::path& path) {
    InkPrices prices;
    std::error_code ignored;
    if (!fs::exists(path, ignored)) return prices;
    const std::vector<uint8_t> bytes = ReadWholeFile(path, kMostBytes);
    try {
        TakeJson(nlohmann::json::parse(bytes), prices);
    } catch (const std::exception&) {
        throw std::runtime_error(Utf8FromPath(path) +
                                 " is damaged; remove it, and give --drop and --price again");
    }
    return prices;
}

void SaveInkPrices(const InkPrices& prices, const fs::path& path) {
    nlohmann::ordered_json json = {{kDropKey, prices.dropPicoliters},
                                   {kPricesKey, nlohmann::ordered_json::object()}};
    for (int ink = 0; ink < kInks; ++ink) {
        if (prices.perLiter[ink]) json[kPricesKey][std::string(1, kInkLetters[ink])] = *prices.perLiter[ink];
    }
    std::error_code ignored;  // the file can't be written then, which says why
    fs::create_directories(path.parent_path(), ignored);
    WriteWholeFile(path, std::string_view(json.dump(2) + "\n"));
}

}  // namespace orvex::tools::view
