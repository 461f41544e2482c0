// Whole random jobs, one after the other in a process: random device modes, installations, printers, pages,
// engines and failures. The driver must do in every hook what its model says. Jobs are not always ended,
// pages are sent without a device, and devices are reset between pages.

#include "tests/plain/layout_input.h"
#include "tests/system/random_jobs/driver_pair.h"
#include "tests/system/random_jobs/job_count.h"
#include "tests/system/random_jobs/random_record.h"
#include "tests/system/random_jobs/random_world.h"

namespace orvex {

namespace {

constexpr int32_t kMostPixels = 40'000'000;  // of a device's own bitmap

class RandomJobs : public DriverPair {
  protected:
    void RunJob(uint64_t seed) {
        random_ = Random(seed);
        ChangeWorld();
        int device = OpenDevice();
        if (device == plain::kNoDevice) return;
        page_ = NextPage(device);
        if (random_.OnceIn(4)) ChangeMask();
        const bool valid = !random_.OnceIn(40);
        const int jobId = random_.Between(1, 99);
        const bool started = StartDoc(valid ? device : plain::kNoDevice, page_, RandomTitle(), jobId);
        const int pages = started || random_.OnceIn(2) ? random_.Between(1, 3) : 0;
        for (int page = 0; page < pages && device != plain::kNoDevice; ++page) {
            if (random_.OnceIn(4)) device = Reset(device);
            if (device != plain::kNoDevice) PrintPage(device);
        }
        EndJob(device);
    }

    int pagesSent_ = 0;  // to a print engine

    plain::PageBits page_;

  private:
    void ChangeWorld() {
        ChangeInstallation(random_, large, model.installation);
        model.labels = RandomLabels(random_);
        model.installation.found = !random_.OnceIn(30);
        model.libraryLoads = !random_.OnceIn(30);
        model.makesPalettes = !random_.OnceIn(40);
        model.refusedWrites.clear();
        if (random_.OnceIn(8)) model.refusedWrites.insert(random_.Between(1, 40));
        if (random_.OnceIn(8))
            model.refusedWrites.insert(random_.Between(19, 26));  // the header's last lines
        InstallFiles();
        BeginJob(RandomScript(random_));
        if (random_.OnceIn(2)) ChangeMask();
    }

    void ChangeMask() {
        model.installation.mask = RandomMask(random_);
        WriteMask();
    }

    std::string RandomTitle() {
        return random_.OnceIn(8) ? std::string(random_.OneOf({511u, 512u, 600u}), 't')
                                 : random_.Text({"label", "", "a \"quoted\" name", "100%s %d", "two\twords"});
    }

    int EnableRandomPdev() {
        if (random_.OnceIn(12)) return EnablePdev(std::nullopt);
        return EnablePdev(RandomRecord(random_, model.installation));
    }

    // Returns whether the page bitmap of a device can be made: the size of a label may be anything.
    bool IsDrawable(int device) const {
        const plain::ModelDevice& at = model.Device(device);
        const int16_t dpi = plain::Resolution(at.mode);
        const int64_t width = plain::PixelsOf(dpi, at.pageWidth),
                      height = plain::PixelsOf(dpi, at.pageLength);
        return width > 0 && height > 0 && width < 10000 && height < 10000 && width * height < kMostPixels;
    }

    // Enables a device and its surface. Returns kNoDevice if either can't be had.
    int OpenDevice() {
        const int device = EnableRandomPdev();
        if (device == plain::kNoDevice || OpenSurface(device)) return device;
        DisablePdev(device);
        return plain::kNoDevice;
    }

    bool OpenSurface(int device) {
        if (!IsDrawable(device)) return false;
        model.makesBitmaps = !random_.OnceIn(40);
        model.associates = !random_.OnceIn(40);
        return EnableSurface(device);
    }

    plain::PageBits NextPage(int device) {
        return RandomPage(random_, model.Device(device).surfaceWidth, model.Device(device).surfaceHeight);
    }

    // Lets another device take over from this one. Returns kNoDevice if there is no such device.
    int Reset(int device) {
        const int fresh = EnableRandomPdev();
        if (fresh == plain::kNoDevice) return device;
        ResetPdev(device, fresh);
        const bool opened = OpenSurface(fresh);
        DisablePdev(device);
        if (!opened) {
            DisablePdev(fresh);
            return plain::kNoDevice;
        }
        page_ = NextPage(fresh);
        if (!random_.OnceIn(10)) StartDoc(fresh, page_, RandomTitle(), 1);
        return fresh;
    }

    void PrintPage(int device) {
        const auto deviceOrNone = [&] { return random_.OnceIn(40) ? plain::kNoDevice : device; };
        page_ = NextPage(device);
        if (!random_.OnceIn(20)) StartPage(deviceOrNone(), page_);
        if (random_.OnceIn(6)) return;
        pagesSent_ += SendPage(deviceOrNone(), page_) && model.Bound() ? 1 : 0;
    }

    void EndJob(int device) {
        const bool ends = !random_.OnceIn(8);
        if (device != plain::kNoDevice && ends && !random_.OnceIn(10)) EndDoc(device, page_);
        if (device != plain::kNoDevice) DisablePdev(device);
        // The graphics engine ends the job of a device that it has disabled, too.
        if (model.Bound() && ends) EndDoc(plain::kNoDevice, page_);
    }

    Random random_{0};
};

}  // namespace

TEST_F(RandomJobs, DoWhatTheModelSays) {
    for (int job = 1; job <= jobCount; ++job) {
        RunJob(jobSeed * 1000003 + static_cast<uint64_t>(job));
        ASSERT_FALSE(HasFailure()) << "in job " << job << "; again with: random_jobs_tests --seed " << jobSeed
                                   << " --jobs " << job << "; the last page has " << page_.width << " x "
                                   << page_.height << " pixels; settings.inf: "
                                   << testing::PrintToString(model.installation.settings.value_or("none"));
    }
    EXPECT_TRUE(jobCount < 100 || pagesSent_ >= jobCount / 2) << "jobs send few pages: " << pagesSent_;
}

}  // namespace orvex
