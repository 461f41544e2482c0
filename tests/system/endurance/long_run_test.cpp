// A thousand pages in a hundred jobs of one process: nothing grows, and the last job prints as the first.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <iostream>

#include "tests/kit/heap_watch.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/system/endurance/helper/job_kinds.h"
#include "tests/system/endurance/other_process.h"
#include "tests/system/endurance/process_figures.h"

namespace orvex {

using namespace tools;
namespace {

constexpr size_t kJobs = 100;
constexpr size_t kLoads = 5;
constexpr size_t kLoggedJobs = 9;                           // every ninth job logs
[[maybe_unused]] constexpr size_t kPrivateSlack = 1 << 20;  // growth of the system's own heaps

struct JobRecord {
    ProcessFigures process;
    size_t driverBytes;
    double pageMs;
};

class LongRun : public testing::Test {
  protected:
    LongRun() { InstallJobProfiles(installation_.Path()); }

    std::string Print(DriverSession& session, const JobKind& kind) const {
        return PrintJob(session, installation_.Path(), kind);
    }

    // Prints the job in a process that has printed nothing before.
    std::string PrintInFreshProcess(size_t kind) const {
        const std::filesystem::path file = installation_.Path() / "fresh.prn";
        OtherProcess process({"print", std::to_string(kind), installation_.Path().string(), file.string()});
        EXPECT_EQ(process.Wait(), 0);
        return ReadBytes(file);
    }

    // Returns the mean time of a page over the jobs of a kind in one half of the run.
    static double PageMs(const std::vector<JobRecord>& records, size_t kind, size_t first, size_t end) {
        double sum = 0;
        size_t count = 0;
        for (size_t job = first; job < end; ++job) {
            if (job % JobKinds().size() != kind) continue;
            sum += records[job].pageMs;
            ++count;
        }
        return sum / static_cast<double>(count);
    }

    ScratchFolder installation_;
};

}  // namespace

TEST_F(LongRun, NeitherGrowsNorChangesWhatItPrints) {
    const size_t kinds = JobKinds().size();
    const size_t warm = 2 * kinds;
    DriverSession session(JobSession(installation_.Path()));
    const HeapWatch heap(session.Driver().Module());
    std::vector<std::string> firsts;
    std::vector<JobRecord> records;
    records.reserve(kJobs);
    for (size_t job = 0; job < kJobs; ++job) {
        std::optional<LogCapture> log;
        if (job % kLoggedJobs == 0) log.emplace(session.Driver().LogPath(), 1);
        const auto start = std::chrono::steady_clock::now();
        std::string bytes = Print(session, JobKinds()[job % kinds]);
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        if (job < kinds) {
            firsts.push_back(bytes);
        } else {
            ASSERT_TRUE(bytes == firsts[job % kinds]) << "job " << job;
        }
        log.reset();
        std::string().swap(bytes);
        records.push_back({MeasureProcess(), heap.LiveBytes(), elapsed.count() / kPagesAJob});
    }

    const JobRecord& early = records[warm - 1];
    const JobRecord& late = records.back();
    for (size_t job = warm; job < kJobs; ++job) {
        EXPECT_EQ(records[job].process.handles, early.process.handles) << "after job " << job;
        EXPECT_EQ(records[job].driverBytes, early.driverBytes) << "after job " << job;
    }
#ifdef _WIN32
    EXPECT_LE(late.process.privateBytes, early.process.privateBytes + kPrivateSlack);
#endif
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
    EXPECT_THAT(session.PrintSpooler().Misuses(), testing::IsEmpty());

    const auto report = [](const char* when, const JobRecord& record) {
        std::cout << when << ": " << record.process.privateBytes / 1024 << " KiB private, "
                  << record.process.residentBytes / 1024 << " KiB resident, " << record.driverBytes
                  << " bytes of live heap, " << record.process.handles << " handles\n";
    };
    std::cout << "long run: " << kJobs << " jobs, " << kJobs * kPagesAJob << " pages\n";
    report("  after the first round", records[kinds - 1]);
    report("  when warm", early);
    report("  at the end", late);
    for (size_t kind = 0; kind < kinds; ++kind) {
        std::cout << "  " << PageMs(records, kind, warm, (warm + kJobs) / 2) << " ms, later "
                  << PageMs(records, kind, (warm + kJobs) / 2, kJobs)
                  << " ms a page: " << JobKinds()[kind].name << '\n';
    }
}

TEST_F(LongRun, PrintsAsAFreshProcessDoes) {
    std::vector<std::string> fresh;
    for (size_t kind = 0; kind < JobKinds().size(); ++kind) fresh.push_back(PrintInFreshProcess(kind));
    DriverSession session(JobSession(installation_.Path()));
    for (size_t round = 0; round < 2; ++round) {
        for (size_t kind = 0; kind < JobKinds().size(); ++kind) {
            EXPECT_TRUE(Print(session, JobKinds()[kind]) == fresh[kind]) << JobKinds()[kind].name;
        }
    }
}

TEST_F(LongRun, LeavesNoHandleWhenTheDriverIsLoadedAndUnloadedAgainAndAgain) {
#ifdef _WIN32
    LoadLibraryW(L"winspool.drv");  // Wine's own leaves a handle each time it is unloaded
#endif
    size_t early = 0;
    for (size_t load = 0; load < 2 * kLoads; ++load) {
        {
            DriverSession session(JobSession(installation_.Path()));
            Print(session, JobKinds().front());
        }
        if (load == kLoads) early = MeasureProcess().handles;
    }
    EXPECT_EQ(MeasureProcess().handles, early);
}

}  // namespace orvex
