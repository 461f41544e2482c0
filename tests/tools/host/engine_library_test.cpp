#include "tools/host/engine_library.h"

#include <gmock/gmock.h>

#include "tests/tools/host/refusing_engine.h"

namespace orvex::tools {

using testing::ElementsAre;

namespace {

uint32_t HPCRLIB_CALL RefuseEnd(uint64_t) {
    return 9;
}

class EngineLibraryTest : public testing::Test {
  protected:
    EngineLibraryTest() { RefusingEngine::Reset(); }

    // Puts the engine in place of the library, and loads that as the driver does.
    void Load(EngineSource source) {
        engine_.emplace(std::move(source)).Attach(nullptr);
        library_ = LoadLibraryW(L"hpcrlib.dll");
    }

    template <typename Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
    }

    std::optional<EngineLibrary> engine_;
    HMODULE library_ = nullptr;
};

}  // namespace

TEST_F(EngineLibraryTest, AnswersTheDriversRequestForIt) {
    EngineLibrary engine(kRefusingEngine);
    engine.Attach(nullptr);
    for (const WCHAR* name : {L"hpcrlib.dll", L"HPCRLIB.DLL"}) {
        const HMODULE library = LoadLibraryW(name);
        ASSERT_NE(library, nullptr);
        EXPECT_TRUE(engine.Bound());
        EXPECT_NE(GetProcAddress(library, "HPCRLIB_JobStart"), nullptr);
        EXPECT_EQ(GetProcAddress(library, "HPCRLIB_Unknown"), nullptr);
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_FALSE(engine.Bound());
    }
    EXPECT_EQ(engine.Books().loads, 2u);
    EXPECT_EQ(engine.Books().frees, 2u);
}

TEST_F(EngineLibraryTest, LeavesOtherLibrariesToTheSystem) {
    EngineLibrary engine(kRefusingEngine);
    engine.Attach(nullptr);
    EXPECT_EQ(LoadLibraryW(L"no-such-library-here.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(engine.Books().loads, 0u);
}

TEST_F(EngineLibraryTest, LacksTheExportsThatAreNull) {
    PrintEngine entries = kRefusingEngine;
    entries.HPCRLIB_RasterRow = nullptr;
    Load(entries);
    EXPECT_NE(GetProcAddress(library_, "HPCRLIB_RasterBlockStart"), nullptr);
    EXPECT_EQ(GetProcAddress(library_, "HPCRLIB_RasterRow"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_THAT(engine_->Books().refusals, ElementsAre("hpcrlib.dll has no HPCRLIB_RasterRow"));
    FreeLibrary(library_);
}

TEST_F(EngineLibraryTest, RecordsAJob) {
    Load(kRefusingEngine);
    const auto jobStart = Find<decltype(&HPCRLIB_JobStart)>("HPCRLIB_JobStart");
    const auto pageStart = Find<decltype(&HPCRLIB_PageStart)>("HPCRLIB_PageStart");
    const auto blockStart = Find<decltype(&HPCRLIB_RasterBlockStart)>("HPCRLIB_RasterBlockStart");
    const auto row = Find<decltype(&HPCRLIB_RasterRow)>("HPCRLIB_RasterRow");
    const auto blockEnd = Find<decltype(&HPCRLIB_RasterBlockEnd)>("HPCRLIB_RasterBlockEnd");
    const auto pageEnd = Find<decltype(&HPCRLIB_PageEnd)>("HPCRLIB_PageEnd");
    const auto jobEnd = Find<decltype(&HPCRLIB_JobEnd)>("HPCRLIB_JobEnd");
    std::vector<uint32_t> progress;
    engine_->OnRow([&](const EnginePage& page, uint64_t number) {
        EXPECT_EQ(number, 1u);
        progress.push_back(page.rowsTaken);
    });
    RefusingEngine::refusedRow = 2;
    ASSERT_EQ(jobStart(nullptr, nullptr, 1, 0), 7u);
    EXPECT_EQ(pageStart(7, 5000, 86616), 1u);
    EXPECT_EQ(blockStart(7, 0, 11, 300, 3), 1u);
    EXPECT_EQ(row(7, nullptr), 1u);
    EXPECT_EQ(row(7, nullptr), 1u);
    EXPECT_EQ(row(7, nullptr), 0u);
    EXPECT_EQ(blockEnd(7), 1u);
    EXPECT_EQ(pageEnd(7), 1u);
    EXPECT_EQ(jobEnd(7), 1u);
    FreeLibrary(library_);

    const EngineBooks& books = engine_->Books();
    EXPECT_EQ(books.jobsStarted, 1u);
    EXPECT_EQ(books.jobsEnded, 1u);
    EXPECT_EQ(books.pagesStarted, 1u);
    EXPECT_EQ(books.pagesEnded, 1u);
    EXPECT_EQ(books.rowsTaken, 2u);
    ASSERT_EQ(books.pages.size(), 1u);
    EXPECT_EQ(books.pages[0].width, 5000u);
    EXPECT_EQ(books.pages[0].length, 86616u);
    EXPECT_EQ(books.pages[0].blockTop, 11u);
    EXPECT_EQ(books.pages[0].rowWidth, 300u);
    EXPECT_EQ(books.pages[0].blockRows, 3u);
    EXPECT_EQ(books.pages[0].rowsTaken, 2u);
    EXPECT_THAT(progress, ElementsAre(1u, 2u));
    EXPECT_THAT(books.refusals, ElementsAre("HPCRLIB_RasterRow of row 2 was refused (0)"));
    EXPECT_EQ(books.refusalCount, 1u);
}

TEST_F(EngineLibraryTest, RecordsAJobThatDidNotStart) {
    Load(kRefusingEngine);
    RefusingEngine::job = 0;
    EXPECT_EQ(Find<decltype(&HPCRLIB_JobStart)>("HPCRLIB_JobStart")(nullptr, nullptr, 0, 0), 0u);
    FreeLibrary(library_);
    EXPECT_THAT(engine_->Books().refusals, ElementsAre("HPCRLIB_JobStart started no job"));
    EXPECT_EQ(engine_->Books().jobsStarted, 0u);
}

TEST_F(EngineLibraryTest, KeepsTheFirstRefusalsAndCountsTheRest) {
    PrintEngine entries = kRefusingEngine;
    entries.HPCRLIB_JobEnd = RefuseEnd;
    Load(entries);
    const auto jobEnd = Find<decltype(&HPCRLIB_JobEnd)>("HPCRLIB_JobEnd");
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(jobEnd(7), 9u);
    FreeLibrary(library_);
    EXPECT_EQ(engine_->Books().refusals.size(), 16u);
    EXPECT_EQ(engine_->Books().refusals[0], "HPCRLIB_JobEnd was refused (9)");
    EXPECT_EQ(engine_->Books().refusalCount, 1000u);
}

TEST_F(EngineLibraryTest, CanBeMadeToFailLoading) {
    EngineLibrary engine(kRefusingEngine);
    engine.Attach(nullptr);
    engine.FailLoading(true);
    EXPECT_EQ(LoadLibraryW(L"hpcrlib.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_FALSE(engine.Bound());
    EXPECT_THAT(engine.Books().refusals, ElementsAre("hpcrlib.dll can't be loaded (error 126)"));
    engine.FailLoading(false);
    const HMODULE library = LoadLibraryW(L"hpcrlib.dll");
    EXPECT_NE(library, nullptr);
    FreeLibrary(library);
}

TEST_F(EngineLibraryTest, FailsIfThereIsNoSuchFile) {
    Load(std::filesystem::path("no-such-folder") / "hpcrlib.dll");
    EXPECT_EQ(library_, nullptr);
    EXPECT_FALSE(engine_->Bound());
}

}  // namespace orvex::tools
