#include "tools/orvexprofile/recipe.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

#include "driver/color/ink.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/profile_writer.h"

namespace orvex::tools::profile {

namespace {

using Json = nlohmann::json;

struct Range {
    double least;
    double most;
};

constexpr Range kDensity = {0, 4};
constexpr Range kSolidDensity = {0.2, 4};
constexpr Range kGain = {0, 25};  // with more, dots would cover more than the whole area
constexpr Range kEase = {0, 20};
constexpr Range kLimit = {kLeastInkLimit, kNoInkLimit};
constexpr Range kScale = {kLeastScale, kLargestScale};
constexpr Range kCode = {-128, 127};
constexpr double kLeastDeterminant = 0.01;  // of the color inks' densities

[[noreturn]] void Refuse(const std::string& key, const std::string& why) {
    throw std::invalid_argument("\"" + key + "\": " + why);
}

std::string Shown(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

// Shows lists and objects by their kind only: they may be long, and nested deeper than the stack allows.
std::string Shown(const Json& value) {
    if (value.is_array()) return "a list of " + std::to_string(value.size());
    return value.is_object() ? "an object" : value.dump();
}

// The members of one object. RefuseOthers refuses those that nobody asked for.
class Section {
  public:
    Section(const Json& json, std::string path) : json_(json), path_(std::move(path)) {
        if (!json.is_object()) throw std::invalid_argument(Name("") + "a recipe holds an object here");
    }

    bool Has(const char* key) const { return json_.contains(key); }
    const Json& At(const char* key) {
        asked_.insert(key);
        if (!Has(key)) Refuse(path_ + key, "is missing");
        return json_.at(key);
    }
    Section Inner(const char* key) { return Section(At(key), path_ + key + "/"); }
    std::string Text(const char* key) {
        const Json& value = At(key);
        if (!value.is_string()) Refuse(path_ + key, "is a text, not " + Shown(value));
        return value.get<std::string>();
    }
    double Number(const char* key, Range range) { return CheckedNumber(path_ + key, At(key), range); }
    double Number(const char* key, Range range, double absent) {
        return Has(key) ? Number(key, range) : absent;
    }
    std::array<double, kChannels> Channels(const char* key, Range range) {
        const Json& value = At(key);
        if (!value.is_array() || value.size() != kChannels) {
            Refuse(path_ + key, "is a list of 3 numbers, for red, green and blue, not " + Shown(value));
        }
        std::array<double, kChannels> numbers;
        for (size_t i = 0; i < kChannels; ++i) numbers[i] = CheckedNumber(path_ + key, value[i], range);
        return numbers;
    }
    void RefuseOthers() const {
        for (const auto& [key, value] : json_.items()) {
            if (!asked_.contains(key)) Refuse(path_ + key, "is not a key of a recipe");
        }
    }

  private:
    static double CheckedNumber(const std::string& key, const Json& value, Range range) {
        if (!value.is_number()) Refuse(key, "is a number, not " + Shown(value));
        const double number = value.get<double>();
        if (!(number >= range.least && number <= range.most)) {
            Refuse(key, "is a number from " + Shown(range.least) + " to " + Shown(range.most) + ", not " +
                            Shown(value));
        }
        return number;
    }
    std::string Name(const char* key) const { return path_.empty() ? "" : "\"" + path_ + key + "\": "; }

    const Json& json_;
    std::string path_;
    std::set<std::string> asked_;
};

SeparationModel ReadModel(Section& section) {
    SeparationModel model;
    Section inks = section.Inner("inks");
    for (int ink = 0; ink < kInks; ++ink) {
        const char letter[] = {kInkLetters[ink], '\0'};
        Section one = inks.Inner(letter);
        model.inks[ink] = {one.Channels("density", kDensity), one.Number("dot_gain", kGain)};
        one.RefuseOthers();
    }
    inks.RefuseOthers();
    model.blackDensity = section.Number("black_density", kSolidDensity);
    model.chromaDensity = section.Number("chroma_density", kSolidDensity);
    model.blackStart = section.Number("black_start", kDensity);
    model.highlightEase = section.Number("highlight_ease", kEase);
    return model;
}

// Verifies the rules between the numbers.
void CheckModel(const SeparationModel& model) {
    const auto& black = model.inks[kBlackInk].density;
    if (black[0] < kSolidDensity.least) Refuse("inks/K/density", "black ink is darker than that");
    if (model.blackDensity < black[0]) Refuse("black_density", "is at least the density of solid black ink");
    if (model.blackStart >= model.blackDensity) Refuse("black_start", "lies below black_density");
    if (model.chromaDensity > model.blackDensity) Refuse("chroma_density", "is at most black_density");
    for (int ink = kCyanInk; ink <= kYellowInk; ++ink) {
        if (model.inks[ink].density[static_cast<size_t>(ink - kCyanInk)] < kSolidDensity.least) {
            Refuse(std::string("inks/") + kInkLetters[ink] + "/density",
                   "the ink absorbs too little of its own channel");
        }
    }
    if (std::abs(ColorInkDeterminant(model)) < kLeastDeterminant)
        Refuse("inks", "C, M and Y can't be told apart");
}

std::optional<ResolutionCodes> ReadCodes(Section& section) {
    if (!section.Has("resolution_codes")) return std::nullopt;
    Section codes = section.Inner("resolution_codes");
    const ResolutionCodes result = {static_cast<int8_t>(codes.Number("other", kCode)),
                                    static_cast<int8_t>(codes.Number("600", kCode))};
    codes.RefuseOthers();
    return result;
}

InkTreatment ReadTreatment(Section& section) {
    InkTreatment treatment;
    treatment.limit = section.Number("ink_limit", kLimit, treatment.limit);
    if (section.Has("scale")) {
        Section scale = section.Inner("scale");
        treatment.scaleAt600 = scale.Number("600", kScale, treatment.scaleAt600);
        treatment.scaleOther = scale.Number("other", kScale, treatment.scaleOther);
        scale.RefuseOthers();
    }
    return treatment;
}

}  // namespace

Recipe ParseRecipe(std::string_view json) {
    Json parsed;
    try {
        parsed = Json::parse(json);
    } catch (const Json::parse_error& error) {
        throw std::invalid_argument("not JSON, near byte " + std::to_string(error.byte));
    } catch (const Json::out_of_range&) {
        throw std::invalid_argument("holds a number that is too large for any key");
    }
    Section section(parsed, "");
    Recipe recipe;
    recipe.name = section.Text("name");
    CheckProfileName(recipe.name);
    recipe.codes = ReadCodes(section);
    recipe.model = ReadModel(section);
    recipe.treatment = ReadTreatment(section);
    if (section.Has("comment")) section.Text("comment");
    section.RefuseOthers();
    CheckModel(recipe.model);
    return recipe;
}

Recipe ReadRecipe(const std::filesystem::path& path) {
    const std::string json = ReadWholeText(path);
    try {
        return ParseRecipe(json);
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(path.string() + ": " + error.what());
    }
}

Profile MixProfile(const Recipe& recipe) {
    Profile profile;
    profile.name = recipe.name;
    profile.codes = recipe.codes;
    const Separation separation(recipe.model);
    FillVariants(
        profile,
        [&separation](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
            for (size_t i = 0; i < colors.size(); ++i) inks[i] = separation.Inks(colors[i]);
        },
        recipe.treatment);
    return profile;
}

}  // namespace orvex::tools::profile
