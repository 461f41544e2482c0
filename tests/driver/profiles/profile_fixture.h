// Loads profiles from a folder of a test's own, and verifies the results of a load.
#pragma once

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

#include "driver/profiles/profile_file.h"
#include "tests/driver/color/cache_filling.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/large_profile.h"
#include "tests/plain/plain_tables.h"

namespace orvex {

constexpr char kUntouched = '#';

class ProfileFixture : public testing::Test {
  protected:
    std::string PathOf(const std::string& bytes) { return folder_.Write("test.zvp", bytes).string(); }

    int32_t Load(const std::string& path, int32_t resolution = kResolution600) {
        memset(name_, kUntouched, sizeof name_);
        strcpy(name_, "asked.zvp");
        code_ = 99;
        const FileWatch watch;
        const int32_t kind = zvc_load_profile(path.c_str(), resolution, &code_, name_, sizeof name_);
        EXPECT_EQ(watch.Open(), 0u);
        EXPECT_EQ(g_profileLoaded, 1);
        EXPECT_EQ(g_cacheKind, kind);
        return kind;
    }

    // Loads a profile that can't be read and expects the generic conversion in its place. `lines` are only
    // those of the reader.
    void ExpectRejected(const std::string& path, std::vector<std::string> lines,
                        int32_t resolution = kResolution600) {
        LogCapture log;
        memset(g_colorCache, kUntouched, sizeof g_colorCache);
        EXPECT_EQ(Load(path, resolution), 1);
        lines.insert(lines.begin(), {"[Trace] <zvc_load_profile>", "[Info]  load_profile [" + path + "]"});
        lines.push_back(std::string("[Info]  read_profile 0 ").append(std::to_string(code_)) + " " + name_);
        lines.push_back(std::string("[Error] error reading profile ") + name_ + "!");
        lines.push_back("[Info]  generic profile");
        lines.push_back("[Trace] </zvc_load_profile>");
        EXPECT_THAT(log.TakeLines(), testing::ElementsAreArray(lines));
        EXPECT_TRUE(HoldsGenericConversion(resolution == kResolution600 ? 50 : 100));
    }
    // Does the same for a file of these bytes. In the reader's lines, "<path>" is the file's path.
    void ExpectRejectedBytes(const std::string& bytes, std::vector<std::string> lines) {
        const std::string path = PathOf(bytes);
        for (std::string& line : lines) {
            const size_t mark = line.find("<path>");
            if (mark != std::string::npos) line.replace(mark, 6, path);
        }
        ExpectRejected(path, lines);
    }

    static testing::AssertionResult HoldsGenericConversion(int percent) {
        return HoldsTable(plain::GenericTable(percent));
    }

    // Loads a large profile of that version at both resolutions and compares all entries. `others` is the
    // entry of the colors that the profile leaves out.
    void ExpectEveryEntryLoaded(int version, uint32_t others) {
        const std::string path = (folder_.Path() / "large.zvp").string();
        WriteLargeProfile(path, version, NameTag("Large") + ResolutionTag(3, 6));
        for (const int32_t resolution : {kResolution600, kResolution300}) {
            const bool at600Dpi = resolution == kResolution600;
            EXPECT_EQ(Load(path, resolution), version);
            EXPECT_EQ(code_, at600Dpi ? 6 : 3);
            EXPECT_STREQ(name_, "Large");
            EXPECT_TRUE(HoldsTable(LargeProfileTable(version, at600Dpi, others)));
        }
    }

    ScratchFolder folder_;
    signed char code_ = 0;
    char name_[512];
};

// Returns a profile of version 5 with these tags and ProfileInk.
inline std::string SmallProfile(std::string_view tags) {
    return ProfileBytes(5, TagArea(tags), GridColors(ProfileInk));
}

}  // namespace orvex
