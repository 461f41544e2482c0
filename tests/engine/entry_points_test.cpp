#include "engine/hpcrlib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

#include "tests/engine/engine_output.h"
#include "tools/orvexview/print_file.h"

namespace orvex {

using tools::view::PrintFile;
using tools::view::ReadRows;

namespace {

constexpr uint32_t kRow[4] = {1, 2, 3, 4};

// The calls of a job between its start and its end, each with arguments that are good in its place.
struct Call {
    const char* name;
    uint32_t (*make)(uint64_t job);
};
constexpr Call kCalls[] = {
    {"page start", [](uint64_t job) { return HPCRLIB_PageStart(job, 1000, 1000); }},
    {"block start", [](uint64_t job) { return HPCRLIB_RasterBlockStart(job, 0, 0, 4, 2); }},
    {"row", [](uint64_t job) { return HPCRLIB_RasterRow(job, kRow); }},
    {"block end", [](uint64_t job) { return HPCRLIB_RasterBlockEnd(job); }},
    {"page end", [](uint64_t job) { return HPCRLIB_PageEnd(job); }},
};

// Verifies that a job refuses every call except those named, which it does not make.
void ExpectRefused(uint64_t job, std::initializer_list<std::string_view> but) {
    for (const Call& call : kCalls) {
        if (std::find(but.begin(), but.end(), call.name) != but.end()) continue;
        EXPECT_EQ(call.make(job), 0u) << call.name;
    }
}

PrintFile Parse(const std::string& bytes) {
    return tools::view::ParsePrintFile({bytes.begin(), bytes.end()});
}

// A job that can be taken to any of its stages, and ends with the test.
class Engine : public testing::Test {
  protected:
    ~Engine() override {
        if (job_ != 0) HPCRLIB_JobEnd(job_);
    }

    void StartJob() { ASSERT_NE(job_ = output_.StartJob(), 0u); }
    void StartPage() {
        StartJob();
        ASSERT_EQ(StartFittingPage(job_, 4, 2), 1u);
    }
    void StartBlock() {
        StartPage();
        ASSERT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 2), 1u);
    }
    void FillBlock() {
        StartBlock();
        ASSERT_EQ(HPCRLIB_RasterRow(job_, kRow), 1u);
        ASSERT_EQ(HPCRLIB_RasterRow(job_, kRow), 1u);
    }
    uint32_t EndJob() { return HPCRLIB_JobEnd(std::exchange(job_, 0)); }

    // Ends a job whose block is open and full, and verifies that every call succeeds.
    void ExpectGoodEnd() {
        EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 1u);
        EXPECT_EQ(HPCRLIB_PageEnd(job_), 1u);
        EXPECT_EQ(EndJob(), 1u);
    }

    // Starts a page of the head's own length and a block on it.
    uint32_t StartHeadBlock(uint32_t mode, uint32_t top, uint32_t rows) {
        job_ = output_.StartJob(mode);
        HPCRLIB_PageStart(job_, 100'000, print_stream::kFullPageLength);
        return HPCRLIB_RasterBlockStart(job_, 0, top, 4, rows);
    }
    void PutRows(uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) ASSERT_EQ(HPCRLIB_RasterRow(job_, kRow), 1u) << i;
    }

    EngineOutput output_;
    uint64_t job_ = 0;
};

}  // namespace

TEST_F(Engine, RefusesAJobWithBadArguments) {
    EXPECT_EQ(HPCRLIB_JobStart(nullptr, &output_, 0, 0), 0u);
    EXPECT_EQ(HPCRLIB_JobStart(&EngineOutput::Take, &output_, 3, 0), 0u);
    EXPECT_EQ(HPCRLIB_JobStart(&EngineOutput::Take, &output_, 0, 1), 0u);
}

TEST_F(Engine, AcceptsEachResolutionMode) {
    for (const uint32_t mode : {0u, 1u, 2u}) EXPECT_EQ(HPCRLIB_JobEnd(output_.StartJob(mode)), 1u);
}

TEST_F(Engine, RefusesEveryCallOnAnUnknownHandle) {
    StartJob();
    for (const uint64_t handle : {uint64_t{0}, job_ + 1, ~uint64_t{0}}) {
        ExpectRefused(handle, {});
        EXPECT_EQ(HPCRLIB_JobEnd(handle), 0u);
    }
}

TEST_F(Engine, RefusesTheHandleOfAnEndedJob) {
    StartJob();
    const uint64_t ended = job_;
    EXPECT_EQ(EndJob(), 1u);
    EXPECT_EQ(HPCRLIB_JobEnd(ended), 0u);
    StartJob();
    EXPECT_NE(job_, ended);
    EXPECT_EQ(HPCRLIB_PageStart(ended, 1, 1), 0u);
}

TEST_F(Engine, AcceptsOnlyAPageOrTheEndBetweenPages) {
    StartJob();
    ExpectRefused(job_, {"page start"});
    EXPECT_EQ(EndJob(), 1u);
    EXPECT_TRUE(output_.chunks.empty()) << "a job without pages has no output";
}

TEST_F(Engine, AcceptsOnlyABlockOnANewPage) {
    StartPage();
    ExpectRefused(job_, {"block start"});
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 2), 1u);
}

TEST_F(Engine, AcceptsOnlyRowsAndTheEndInABlock) {
    FillBlock();
    ExpectRefused(job_, {"row", "block end"});
    ExpectGoodEnd();
}

TEST_F(Engine, AcceptsOnlyTheEndOfAPageAfterItsBlock) {
    FillBlock();
    ASSERT_EQ(HPCRLIB_RasterBlockEnd(job_), 1u);
    ExpectRefused(job_, {"page end"});
    EXPECT_EQ(HPCRLIB_PageEnd(job_), 1u);
    EXPECT_EQ(HPCRLIB_PageEnd(job_), 0u);
    EXPECT_EQ(EndJob(), 1u);
}

TEST_F(Engine, FailsToEndAJobWithinAPageButRemovesIt) {
    StartPage();
    const uint64_t job = job_;
    const size_t chunks = output_.chunks.size();
    EXPECT_EQ(EndJob(), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job, 0, 0, 4, 2), 0u);
    EXPECT_EQ(output_.chunks.size(), chunks);
}

TEST_F(Engine, RefusesAPageWithoutWidthOrLength) {
    StartJob();
    EXPECT_EQ(HPCRLIB_PageStart(job_, 0, 1000), 0u);
    EXPECT_EQ(HPCRLIB_PageStart(job_, 1000, 0), 0u);
    EXPECT_TRUE(output_.chunks.empty());
    EXPECT_EQ(HPCRLIB_PageStart(job_, 1000, 1000), 1u);
}

TEST_F(Engine, RefusesABlockWithBadArguments) {
    StartPage();
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 1, 0, 4, 2), 0u) << "reserved";
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 0, 2), 0u) << "no pixels";
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 0), 0u) << "no rows";
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 0xFFFFFFFF, 2), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 0xFFFFFFFF), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0xFFFFFFFF, 4, 2), 0u) << "a negative top";
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 2), 1u);
}

TEST_F(Engine, RefusesABlockThatIsNotOnItsPage) {
    StartJob();
    ASSERT_EQ(HPCRLIB_PageStart(job_, 12 * 100, 12 * 50), 1u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 101, 50), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 100, 51), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 1, 100, 50), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 1, 100, 49), 1u);
}

TEST_F(Engine, TakesAPixelAt300DpiForTwiceAsLarge) {
    job_ = output_.StartJob(kMode300Dpi);
    ASSERT_EQ(HPCRLIB_PageStart(job_, 24 * 100, 24 * 50), 1u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 101, 50), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 100, 50), 1u);
}

TEST_F(Engine, RefusesRowsAndBlocksPastTheLargestSize) {
    StartJob();
    ASSERT_EQ(HPCRLIB_PageStart(job_, 0xFFFFFFFF, 0xFFFFFFFF), 1u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 32769, 1), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 1, 16385), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 16385, 1, 1), 0u);
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 16384, 32768, 16384), 1u);
}

TEST_F(Engine, RefusesANullRowAndAcceptsTheNextOne) {
    StartBlock();
    EXPECT_EQ(HPCRLIB_RasterRow(job_, nullptr), 0u);
    PutRows(2);
    ExpectGoodEnd();
}

TEST_F(Engine, RefusesMoreRowsThanAnnounced) {
    FillBlock();
    EXPECT_EQ(HPCRLIB_RasterRow(job_, kRow), 0u);
    ExpectGoodEnd();
}

TEST_F(Engine, RefusesToEndABlockWhileRowsAreMissing) {
    StartBlock();
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 0u);
    PutRows(1);
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 0u);
    PutRows(1);
    ExpectGoodEnd();
}

// The driver moves a centered label on the full head by making the block shorter or longer by twice the
// print-head offset, which is 100 mm at most.
TEST_F(Engine, LetsABlockOverTheWholeHeadBeShorterByTwiceTheLargestOffset) {
    ASSERT_EQ(StartHeadBlock(kMode600Dpi, 0, 7020), 1u);
    PutRows(7020 - 4724 - 1);
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 0u);
    PutRows(1);
    ExpectGoodEnd();
}

TEST_F(Engine, LetsABlockOverTheWholeHeadBeLongerByTwiceTheLargestOffset) {
    ASSERT_EQ(StartHeadBlock(kMode300Dpi, 0, 3510), 1u);
    PutRows(3510 + 2362);
    EXPECT_EQ(HPCRLIB_RasterRow(job_, kRow), 0u);
    ExpectGoodEnd();
}

TEST_F(Engine, ExpectsAllRowsOfAnyOtherBlock) {
    ASSERT_EQ(StartHeadBlock(kMode600Dpi, 1, 7020), 1u);
    PutRows(7019);
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 0u);
    EndJob();
    ASSERT_EQ(StartHeadBlock(kMode600Dpi, 0, 3510), 1u) << "as many rows as the head has at 300 dpi";
    PutRows(3510);
    EXPECT_EQ(HPCRLIB_RasterRow(job_, kRow), 0u);
}

TEST_F(Engine, FailsTheCallWhoseOutputTheCallbackRefuses) {
    // The chunks of a job with one small page, in order, and the calls that output them.
    const std::vector<std::string> callOfChunk = {"page start", "page start", "page start", "block start",
                                                  "block end",  "page end",   "job end"};
    for (size_t chunk = 0; chunk < callOfChunk.size(); ++chunk) {
        EngineOutput output;
        output.failFrom = chunk;
        const uint64_t job = output.StartJob();
        std::string failed;
        const auto expectOne = [&](const char* call, uint32_t result) {
            if (result != 1 && failed.empty()) failed = call;
            EXPECT_EQ(result, failed.empty() ? 1u : 0u) << call << " of a job that fails at chunk " << chunk;
        };
        for (const int call : {0, 1, 2, 2, 3, 4}) expectOne(kCalls[call].name, kCalls[call].make(job));
        expectOne("job end", HPCRLIB_JobEnd(job));
        EXPECT_EQ(failed, callOfChunk[chunk]);
        EXPECT_EQ(output.chunks.size(), chunk);
    }
}

TEST_F(Engine, FailsARowWhoseOutputTheCallbackRefuses) {
    constexpr uint32_t kWidth = 8192;  // one row fills a record
    std::vector<uint32_t> row(kWidth);
    for (uint32_t i = 0; i < kWidth; ++i) row[i] = i + 1;
    output_.failFrom = 4;
    StartJob();
    ASSERT_EQ(StartFittingPage(job_, kWidth, 2), 1u);
    ASSERT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, kWidth, 2), 1u);
    EXPECT_EQ(HPCRLIB_RasterRow(job_, row.data()), 0u);
    output_.failFrom = SIZE_MAX;
    EXPECT_EQ(HPCRLIB_RasterRow(job_, row.data()), 0u) << "a broken job stays broken";
    EXPECT_EQ(HPCRLIB_RasterBlockEnd(job_), 0u);
    EXPECT_EQ(EndJob(), 0u);
    EXPECT_EQ(output_.chunks.size(), 4u);
}

TEST_F(Engine, RefusesACallFromTheCallbackOfTheSameJob) {
    StartJob();
    std::vector<uint32_t> results;
    output_.during = [&] {
        results.push_back(StartFittingPage(job_, 4, 2));
        results.push_back(HPCRLIB_JobEnd(job_));
    };
    EXPECT_EQ(StartFittingPage(job_, 4, 2), 1u);
    output_.during = nullptr;
    EXPECT_EQ(results, std::vector<uint32_t>(6, 0u));
    EXPECT_EQ(HPCRLIB_RasterBlockStart(job_, 0, 0, 4, 2), 1u);
}

TEST_F(Engine, RunsSeveralJobsAtATime) {
    EngineOutput outputs[3];
    uint64_t jobs[3];
    for (int i = 0; i < 3; ++i) ASSERT_NE(jobs[i] = outputs[i].StartJob(static_cast<uint32_t>(i)), 0u);
    for (uint64_t job : jobs) ASSERT_EQ(HPCRLIB_PageStart(job, 2400, 2400), 1u);
    for (uint64_t job : jobs) ASSERT_EQ(HPCRLIB_RasterBlockStart(job, 0, 0, 4, 2), 1u);
    for (int row = 0; row < 2; ++row) {
        for (uint32_t i = 0; i < 3; ++i) {
            const std::vector<uint32_t> pixels(4, 100 * i + static_cast<uint32_t>(row));
            ASSERT_EQ(HPCRLIB_RasterRow(jobs[i], pixels.data()), 1u);
        }
    }
    for (uint64_t job : jobs) ASSERT_EQ(HPCRLIB_RasterBlockEnd(job), 1u);
    for (uint64_t job : jobs) ASSERT_EQ(HPCRLIB_PageEnd(job), 1u);
    for (uint64_t job : jobs) ASSERT_EQ(HPCRLIB_JobEnd(job), 1u);
    for (uint32_t i = 0; i < 3; ++i) {
        const PrintFile file = Parse(outputs[i].File());
        EXPECT_EQ(file.resolutionMode, i);
        EXPECT_EQ(ReadRows(file.pages[0]),
                  Rows({std::vector<uint32_t>(4, 100 * i), std::vector<uint32_t>(4, 100 * i + 1)}));
    }
}

TEST_F(Engine, KeepsJobsOnSeveralThreadsApart) {
    std::vector<std::string> files(4);
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < 4; ++i) {
        threads.emplace_back([i, &files] {
            files[i] = PrintJob(std::vector<Rows>(20, Rows(10, std::vector<uint32_t>(50, i)))).File();
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (uint32_t i = 0; i < 4; ++i) {
        const PrintFile file = Parse(files[i]);
        ASSERT_EQ(file.pages.size(), 20u);
        for (const tools::view::PrintedPage& page : file.pages) {
            ASSERT_EQ(ReadRows(page), Rows(10, std::vector<uint32_t>(50, i)));
        }
    }
}

TEST_F(Engine, OutputsRandomPagesWithoutLoss) {
    std::mt19937 random(3);
    std::vector<Rows> pages;
    for (int page = 0; page < 5; ++page) {
        Rows rows(1 + random() % 200, std::vector<uint32_t>(1 + random() % 2000));
        for (auto& row : rows) {
            uint32_t pixel = 0;
            for (uint32_t& each : row) each = random() % 8 ? pixel : pixel = static_cast<uint32_t>(random());
            if (random() % 3 == 0) row = rows[0];
        }
        pages.push_back(std::move(rows));
    }
    const PrintFile file = Parse(PrintJob(pages).File());
    ASSERT_EQ(file.pages.size(), pages.size());
    for (size_t i = 0; i < pages.size(); ++i) EXPECT_EQ(ReadRows(file.pages[i]), pages[i]);
}

}  // namespace orvex
