// Recipes: one that is taken makes a profile that the driver reads, with no more ink than its limit and no
// entry that equals kNotComputed. One that is refused gets an error that names its file.

#include <stdexcept>

#include "driver/color/color_cache.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/plain/driver/profile_head.h"
#include "tests/plain/profile.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/recipe.h"

namespace orvex::fuzz {

using namespace tools::profile;
namespace {

// Requires that a variant stays within its limit, but for the rounding of each amount.
void CheckVariant(const Variant& variant, double limit, double scale) {
    const double most = limit * kFullAmount / 100 * scale / 100 + kInks / 2.0;
    for (const uint32_t inks : variant) {
        REQUIRE(inks != kNotComputed);
        REQUIRE(TotalInk(inks) <= most);
    }
    REQUIRE(variant.back() == 0);  // white
}

void CheckMixed(const Recipe& recipe) {
    const Profile profile = MixProfile(recipe);
    const InkTreatment& treatment = recipe.treatment;
    CheckVariant(profile.at600, treatment.limit, treatment.scaleAt600);
    CheckVariant(profile.other, treatment.limit, treatment.scaleOther);

    const std::string file = EncodeProfile(profile);
    const plain::ProfileHead head = plain::ReadHead({file.size(), {{0, file}}}, kLongestName + 1, true);
    REQUIRE(file.size() == FileSize(profile));
    REQUIRE(head.sound && plain::HoldsColors(file, head.colorsAt));
    REQUIRE(head.name == recipe.name);
    REQUIRE(head.code == recipe.codes.value_or(ResolutionCodes()).at600);
}

constexpr char kSound[] =
    R"({"name":"Sample","inks":{"K":{"density":[1.5,1.5,1.5],"dot_gain":18},)"
    R"("C":{"density":[1.35,0.42,0.18],"dot_gain":20},"M":{"density":[0.16,1.3,0.52],"dot_gain":20},)"
    R"("Y":{"density":[0.02,0.1,1.2],"dot_gain":18}},"black_density":1.7,"chroma_density":1.18,)"
    R"("black_start":0.25,"highlight_ease":7)";

}  // namespace

void FuzzRecipe(std::span<const uint8_t> input) {
    FuzzInstallation().Write("recipe.json", FuzzInput(input).RestAsText());
    const std::filesystem::path path = FuzzInstallation().Folder() / "recipe.json";
    try {
        CheckMixed(ReadRecipe(path));
    } catch (const std::invalid_argument& error) {
        REQUIRE(std::string_view(error.what()).starts_with(path.string() + ": "));
    }
}

Seeds RecipeSeeds() {
    const std::string sound = kSound;
    return {
        sound + "}",
        sound + R"(,"resolution_codes":{"other":-1,"600":5},"ink_limit":240,"comment":"\u00E4"})",
        sound + R"(,"scale":{"600":200,"other":1e0}})",
        sound + R"(,"ink_limit":1e999})",
        sound + R"(,"comment":[[[[{"a":null}]]]]})",
        "[]",
    };
}

}  // namespace orvex::fuzz
