#include "tools/trace/trace_writer.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/tools/trace/traced.h"

namespace orvex::tools::trace {
namespace {

using testing::HasSubstr;

std::string Written(const Log& log,
                    const std::function<std::unique_ptr<TraceWriter>(TraceWriter::Put)>& make) {
    std::istringstream stream(log.Text());
    std::string text;
    const auto writer = make([&](std::string_view part) { text += part; });
    ReadTrace(stream, {}, *writer);
    return text;
}

Log Sample() {
    Log log;
    log.Trace("<DrvStartDoc>")
        .Wait(2)
        .Trace("<Inner>")
        .Error("Error: <b> & \xFF")
        .Trace("</Inner>")
        .Trace("Return: TRUE");
    return log.Trace("</DrvStartDoc>").Hook("DrvEndDoc");
}

TEST(TraceWriterTest, WritesJson) {
    const auto json = nlohmann::json::parse(Written(Sample(), MakeJsonWriter));
    ASSERT_EQ(json.size(), 2u);
    EXPECT_EQ(json[0]["job"], 1);
    EXPECT_EQ(json[0]["text"], "DrvStartDoc");
    EXPECT_EQ(json[0]["time"], "2026-11-22T12:00:00.000Z");
    EXPECT_EQ(json[0]["ms"], 2);
    EXPECT_EQ(json[0]["result"], "TRUE");
    EXPECT_EQ(json[0]["children"][0]["children"][0]["kind"], "error");
    EXPECT_EQ(json[0]["children"][0]["children"][0]["text"], "Error: <b> & \xEF\xBF\xBD");
}

TEST(TraceWriterTest, WritesAnEmptyArrayForAnEmptyLog) {
    EXPECT_TRUE(nlohmann::json::parse(Written(Log(), MakeJsonWriter)).empty());
}

TEST(TraceWriterTest, WritesAPageThatUnfoldsErrorsAndNothingElse) {
    const std::string page =
        Written(Sample(), [](TraceWriter::Put put) { return MakeHtmlWriter(std::move(put), "a<b>.txt"); });
    EXPECT_THAT(page, HasSubstr("<title>a&lt;b&gt;.txt</title>"));
    EXPECT_THAT(
        page, HasSubstr("<details open><summary><time>12:00:00.000</time> <span>DrvStartDoc = TRUE</span>"));
    EXPECT_THAT(page, HasSubstr("<span class=\"error\">Error: &lt;b&gt; &amp; \\xFF</span>"));
    EXPECT_THAT(page, HasSubstr("<div><time>12:00:00.002</time> <span>DrvEndDoc</span>"));
    EXPECT_THAT(page, testing::EndsWith("</body></html>\n"));
}

}  // namespace
}  // namespace orvex::tools::trace
