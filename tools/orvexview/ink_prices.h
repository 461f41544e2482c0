// The size of a drop and the prices of inks, remembered for each user.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "driver/color/ink.h"

namespace orvex::tools::view {

struct InkPrices {
    double dropPicoliters = 6;
    std::array<std::optional<double>, kInks> perLiter = {};

    bool AreComplete() const;
};

// Takes "6pl" or "6". Throws OptionError.
void TakeDrop(const std::string& text, InkPrices& prices);

// Takes "K=80,C=95/l", the prices of some inks for a liter. Throws OptionError.
void TakePrices(const std::string& text, InkPrices& prices);

// Returns the file in which the prices of this user are kept: orvexview.json in %APPDATA% or, natively, in
// $XDG_CONFIG_HOME or ~/.config. Throws std::runtime_error if the environment names no folder.
std::filesystem::path InkPricesPath();

// Reads the prices; those of a new user if there is no file. Throws std::runtime_error if it is damaged.
InkPrices LoadInkPrices(const std::filesystem::path& path);

// Writes the prices, and makes the folder if there is none. Throws std::runtime_error.
void SaveInkPrices(const InkPrices& prices, const std::filesystem::path& path);

}  // namespace orvex::tools::view
