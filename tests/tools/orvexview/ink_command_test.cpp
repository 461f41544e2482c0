#include <cstdlib>

#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexview/command_fixture.h"
#include "tools/orvexview/ink_prices.h"
#include "tools/orvexview/options.h"

namespace orvex::tools::view {
namespace {

using testing::HasSubstr;

// Has the user's settings in the test's folder.
class InkCommandTest : public CommandTest {
  protected:
    InkCommandTest() {
#ifdef _WIN32
        _putenv_s("APPDATA", folder_.Path().string().c_str());
#else
        setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
#endif
        // A million drops of black, twice.
        job_ = WriteJob("job.prn", {Rows(1000, std::vector<uint32_t>(1000, 0xFF))},
                        SettingLines({{"COPIES", 2}}));
    }

    std::string job_;
};

TEST_F(InkCommandTest, CountsMillilitersAndCost) {
    EXPECT_EQ(Run({job_, "--ink", "--drop", "10pl", "--price", "K=80,C=95,M=95,Y=95/l"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("1     0.010000  0.000000  0.000000  0.000000  0.010000  0.000800\n"));
    EXPECT_THAT(
        out_.str(),
        HasSubstr("all of 2 copies    0.020000   0.000000  0.000000  0.000000  0.020000   0.001600\n"));
    EXPECT_THAT(
        out_.str(),
        HasSubstr("mean label         0.010000   0.000000  0.000000  0.000000  0.010000   0.000800\n"));
    EXPECT_THAT(
        out_.str(),
        HasSubstr("thousand labels    10.000000  0.000000  0.000000  0.000000  10.000000  0.800000\n"));
    EXPECT_THAT(out_.str(), HasSubstr("A drop has 10.0 picoliters.\n"));
}

TEST_F(InkCommandTest, RemembersDropAndPrices) {
    EXPECT_EQ(Run({job_, "--ink", "--drop", "10", "--price", "K=80,C=95"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("No cost: "));
    EXPECT_EQ(Run({job_, "--ink", "--price", "M=90,Y=90"}), 0);
    const std::string costs = out_.str();
    EXPECT_THAT(costs, HasSubstr("0.000800\n"));
    EXPECT_EQ(Run({job_, "--ink"}), 0);
    EXPECT_EQ(out_.str(), costs);
    EXPECT_EQ(Read("orvexview.json"),
              "{\n  \"dropPicoliters\": 10.0,\n  \"pricePerLiter\": {\n    \"K\": 80.0,\n    \"C\": 95.0,\n"
              "    \"M\": 90.0,\n    \"Y\": 90.0\n  }\n}\n");
}

TEST_F(InkCommandTest, RefusesWrongValuesAndWritesNothing) {
    EXPECT_EQ(Run({job_, "--ink", "--drop", "0pl"}), 2);
    EXPECT_EQ(error_.str(),
              "orvexview: --drop: \"0pl\" is not allowed; it takes picoliters such as 6pl, at most 1000\n");
    EXPECT_EQ(Run({job_, "--ink", "--drop", ""}), 2) << "such as an unset variable";
    EXPECT_EQ(Run({job_, "--ink", "--price", ""}), 2);
    for (const char* price : {"", "K", "K=", "K=x", "Z=1", "K=1,", "K=-1", "K=80 C=95"}) {
        InkPrices prices;
        EXPECT_NE(ThrownText<OptionError>([&] { TakePrices(price, prices); }), "") << price;
    }
    EXPECT_EQ(Read("orvexview.json"), "");
}

TEST_F(InkCommandTest, SaysThatTheSettingsAreDamaged) {
    for (const char* text : {"", "{", "[]", "{\"dropPicoliters\":-1,\"pricePerLiter\":{}}",
                             "{\"dropPicoliters\":6,\"pricePerLiter\":{\"K\":\"x\"}}"}) {
        WriteBytes(folder_.Path() / "orvexview.json", text);
        EXPECT_EQ(Run({job_, "--ink"}), 1) << text;
        EXPECT_THAT(error_.str(), HasSubstr("orvexview.json is damaged; remove it")) << text;
    }
}

TEST_F(InkCommandTest, MakesTheFolderOfTheSettings) {
    const std::filesystem::path path = folder_.Path() / "new" / "orvexview.json";
    SaveInkPrices({.dropPicoliters = 4}, path);
    EXPECT_EQ(LoadInkPrices(path).dropPicoliters, 4);
}

TEST_F(InkCommandTest, TeachesItsOptions) {
    EXPECT_EQ(Run({"--ink", "--help"}), 0);
    EXPECT_THAT(out_.str(), HasSubstr("--price K=80"));
}

}  // namespace
}  // namespace orvex::tools::view
