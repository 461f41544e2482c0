#include "tools/orvexprofile/recipe.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/kit/scratch_folder.h"
#include "tools/orvexprofile/ink_treatment.h"

namespace orvex::tools::profile {

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::ThrowsMessage;

// Returns a valid recipe for tests to change.
json SampleRecipe() {
    return json::parse(R"({
        "name": "Sample",
        "inks": {
            "K": { "density": [1.5, 1.5, 1.5], "dot_gain": 18 },
            "C": { "density": [1.35, 0.42, 0.18], "dot_gain": 20 },
            "M": { "density": [0.16, 1.3, 0.52], "dot_gain": 20 },
            "Y": { "density": [0.02, 0.1, 1.2], "dot_gain": 18 }
        },
        "black_density": 1.7,
        "chroma_density": 1.18,
        "black_start": 0.25,
        "highlight_ease": 7
    })");
}

TEST(Recipe, IsReadWhole) {
    json written = SampleRecipe();
    written["comment"] = "any text";
    written["ink_limit"] = 220;
    written["scale"] = {{"600", 45}, {"other", 90}};
    written["resolution_codes"] = {{"600", 0}, {"other", -1}};
    const Recipe recipe = ParseRecipe(written.dump());
    EXPECT_EQ(recipe.name, "Sample");
    EXPECT_EQ(recipe.codes, (ResolutionCodes{-1, 0}));
    EXPECT_EQ(recipe.treatment.limit, 220);
    EXPECT_EQ(recipe.treatment.scaleAt600, 45);
    EXPECT_EQ(recipe.treatment.scaleOther, 90);
    EXPECT_EQ(recipe.model.blackDensity, 1.7);
    EXPECT_EQ(recipe.model.chromaDensity, 1.18);
    EXPECT_EQ(recipe.model.blackStart, 0.25);
    EXPECT_EQ(recipe.model.highlightEase, 7);
    EXPECT_EQ(recipe.model.inks[kCyanInk].density[1], 0.42);
    EXPECT_EQ(recipe.model.inks[kYellowInk].dotGain, 18);
}

TEST(Recipe, NeedsNoLimitNoScaleAndNoCodes) {
    const Recipe recipe = ParseRecipe(SampleRecipe().dump());
    EXPECT_EQ(recipe.codes, std::nullopt);
    EXPECT_EQ(recipe.treatment.limit, 400);
    EXPECT_EQ(recipe.treatment.scaleAt600, 50);
    EXPECT_EQ(recipe.treatment.scaleOther, 100);
}

struct WrongValue {
    const char* path;  // a JSON pointer
    json value;
    const char* message;
};

TEST(Recipe, IsRefusedWithAWrongValue) {
    const WrongValue wrongValues[] = {
        {"/name", 5, "\"name\": is a text, not 5"},
        {"/name", "", "1 to 511 characters"},
        {"/inks", 5, "an object"},
        {"/inks/Q", 5, "\"inks/Q\": is not a key of a recipe"},
        {"/inks/C/gloss", 5, "\"inks/C/gloss\": is not a key of a recipe"},
        {"/inks/C/density", {1, 2}, "\"inks/C/density\": is a list of 3 numbers"},
        {"/inks/C/density", {1, "x", 2}, "\"inks/C/density\": is a number, not \"x\""},
        {"/inks/C/density", {5, 0, 0}, "\"inks/C/density\": is a number from 0 to 4, not 5"},
        {"/inks/C/density", {0.1, 1, 1}, "\"inks/C/density\": the ink absorbs too little"},
        {"/inks/K/density", {0.1, 1, 1}, "\"inks/K/density\": black ink is darker"},
        {"/inks/M/density", {1.35, 0.42, 0.18}, "\"inks\": C, M and Y can't be told apart"},
        {"/inks/K/dot_gain", 26, "\"inks/K/dot_gain\": is a number from 0 to 25, not 26"},
        {"/black_density", 1.4, "\"black_density\": is at least the density of solid black"},
        {"/chroma_density", 1.8, "\"chroma_density\": is at most black_density"},
        {"/black_start", 1.7, "\"black_start\": lies below black_density"},
        {"/highlight_ease", -1, "\"highlight_ease\": is a number from 0 to 20, not -1"},
        {"/ink_limit", 99, "\"ink_limit\": is a number from 100 to 400, not 99"},
        {"/scale", json::object({{"600", 0}}), "\"scale/600\": is a number from 1 to 200, not 0"},
        {"/scale", json::object({{"300", 9}}), "\"scale/300\": is not a key"},
        {"/resolution_codes", json::object({{"600", 0}}), "\"resolution_codes/other\": is missing"},
        {"/resolution_codes", json::object({{"600", 0}, {"other", 128}}), "from -128 to 127, not 128"},
        {"/comment", 5, "\"comment\": is a text"},
        {"/inklimit", 200, "\"inklimit\": is not a key of a recipe"},
    };
    for (const WrongValue& wrong : wrongValues) {
        SCOPED_TRACE(wrong.path);
        json recipe = SampleRecipe();
        recipe[json::json_pointer(wrong.path)] = wrong.value;
        EXPECT_THAT([&] { ParseRecipe(recipe.dump()); },
                    ThrowsMessage<std::invalid_argument>(HasSubstr(wrong.message)));
    }
}

TEST(Recipe, IsRefusedWithoutAKey) {
    for (const char* key :
         {"name", "inks", "black_density", "chroma_density", "black_start", "highlight_ease"}) {
        json recipe = SampleRecipe();
        recipe.erase(key);
        EXPECT_THAT([&] { ParseRecipe(recipe.dump()); },
                    ThrowsMessage<std::invalid_argument>("\"" + std::string(key) + "\": is missing"));
    }
}

TEST(Recipe, IsRefusedIfItIsNotJson) {
    EXPECT_THAT([] { ParseRecipe("{\"name\": }"); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("not JSON")));
    EXPECT_THAT([] { ParseRecipe(""); }, ThrowsMessage<std::invalid_argument>(HasSubstr("not JSON")));
    EXPECT_THAT([] { ParseRecipe("[]"); }, ThrowsMessage<std::invalid_argument>(HasSubstr("an object")));
}

TEST(Recipe, IsRefusedIfANumberIsTooLarge) {
    std::string text = SampleRecipe().dump();
    EXPECT_THAT([&] { ParseRecipe(text.replace(text.size() - 1, 1, ",\"ink_limit\":1e999}")); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("a number that is too large")));
}

TEST(Recipe, IsRefusedIfItIsNestedDeeperThanTheStackAllows) {
    constexpr size_t kDepth = 200000;
    const std::string deep = std::string(kDepth, '[') + std::string(kDepth, ']');
    EXPECT_THAT([&] { ParseRecipe("{\"name\":" + deep + "}"); },
                ThrowsMessage<std::invalid_argument>("\"name\": is a text, not a list of 1"));
}

TEST(Recipe, IsReadFromAFileThatItsErrorsName) {
    const ScratchFolder scratch;
    EXPECT_EQ(ReadRecipe(scratch.Write("good.json", SampleRecipe().dump())).name, "Sample");
    EXPECT_THAT(
        [&] { ReadRecipe(scratch.Write("bad.json", "{}")); },
        ThrowsMessage<std::invalid_argument>(AllOf(HasSubstr("bad.json: "), HasSubstr("is missing"))));
    EXPECT_THAT([&] { ReadRecipe(scratch.Path() / "none.json"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("none.json can't be opened")));
}

TEST(Recipe, MixesAProfileOfVersion5) {
    const Recipe recipe = ParseRecipe(SampleRecipe().dump());
    const Profile profile = MixProfile(recipe);
    EXPECT_EQ(profile.version, 5);
    EXPECT_EQ(profile.name, "Sample");
    EXPECT_EQ(profile.codes, std::nullopt);
    const Separation separation(recipe.model);
    EXPECT_EQ(profile.other[(8 * 17 + 4) * 17 + 2], separation.Inks(0x804020));
    EXPECT_EQ(profile.other.front(), separation.Inks(0));
    EXPECT_EQ(profile.other.back(), 0u);
}

TEST(Recipe, ShapesTheVariantsByItsLimitAndScales) {
    json written = SampleRecipe();
    written["ink_limit"] = 120;
    written["scale"] = {{"600", 25}};
    const Profile profile = MixProfile(ParseRecipe(written.dump()));
    for (size_t i = 0; i < profile.other.size(); ++i) {
        ASSERT_LE(TotalInk(profile.other[i]), 306u);
        ASSERT_EQ(profile.at600[i], ScaleInk(profile.other[i], 25));
    }
}

}  // namespace

}  // namespace orvex::tools::profile
