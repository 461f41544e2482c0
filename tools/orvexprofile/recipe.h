// A recipe: the numbers that a color profile is made from, as a text that can be read, compared and changed.
// docs/color-profiles.md describes the keys.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/profile.h"
#include "tools/orvexprofile/separation.h"

namespace orvex::tools::profile {

struct Recipe {
    std::string name;
    std::optional<ResolutionCodes> codes;
    SeparationModel model;
    InkTreatment treatment;
};

// Reads the JSON of a recipe. Throws std::invalid_argument that names the key, the value and what is allowed:
// a missing or unknown key, a value of the wrong type or out of its range, inks that can't be told apart.
Recipe ParseRecipe(std::string_view json);

// Throws std::runtime_error when the file can't be read, and what ParseRecipe throws, with the file's name
// before it.
Recipe ReadRecipe(const std::filesystem::path& path);

// Mixes a profile of version 5.
Profile MixProfile(const Recipe& recipe);

}  // namespace orvex::tools::profile
