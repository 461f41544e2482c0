#include "tools/common/whole_file.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <vector>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"

#ifndef _WIN32
#include <sys/stat.h>

#include <csignal>
#include <thread>
#endif

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

class WholeFile : public testing::Test {
  protected:
    size_t Files() const {
        const fs::directory_iterator first(scratch_.Path());
        return static_cast<size_t>(std::distance(first, fs::directory_iterator()));
    }

    const ScratchFolder scratch_;
};
using OutputFileTest = WholeFile;

}  // namespace

TEST_F(WholeFile, IsReadByteByByte) {
    std::string bytes(3'000'000, 'x');
    bytes[2'000'000] = '\0';
    EXPECT_EQ(ReadWholeText(scratch_.Write("large.bin", bytes)), bytes);
    EXPECT_TRUE(ReadWholeFile(scratch_.Write("empty.bin", "")).empty());
}

TEST_F(WholeFile, IsRefusedIfItIsAFolderOrMissingOrTooLarge) {
    const fs::path missing = scratch_.Path() / "missing", file = scratch_.Write("three.bin", "abc");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(scratch_.Path()); }),
              Utf8FromPath(scratch_.Path()) + " is a folder");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(missing); }),
              Utf8FromPath(missing) + " can't be opened: there is no such file or folder");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(file, 2); }), Utf8FromPath(file) + " is too large");
    EXPECT_EQ(ReadWholeFile(file, 3).size(), 3u);
}

TEST_F(OutputFileTest, AppearsWhenItIsComplete) {
    const fs::path path = scratch_.Path() / PathFromUtf8("Etikett \xC3\xB6.prn");
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("one "));
        EXPECT_TRUE(file.Write({"t\0wo", 4}));
        EXPECT_EQ(file.Size(), 8u);
        EXPECT_FALSE(fs::exists(path));
        file.Complete();
    }
    EXPECT_EQ(ReadBytes(path), std::string("one t\0wo", 8));
    EXPECT_EQ(Files(), 1u);
}

TEST_F(OutputFileTest, LeavesNothingIfItIsNotCompleted) {
    const fs::path path = scratch_.Write("out.prn", "before");
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("half"));
    }
    EXPECT_EQ(ReadBytes(path), "before");
    EXPECT_EQ(Files(), 1u);
}

TEST_F(OutputFileTest, ReplacesAnEarlierFile) {
    const fs::path path = scratch_.Write("out.prn", "before, and longer");
    WriteWholeFile(path, "after");
    EXPECT_EQ(ReadBytes(path), "after");
    EXPECT_EQ(Files(), 1u);
}

TEST_F(OutputFileTest, MayHaveTheLongestNameThereIs) {
    const fs::path path = scratch_.Path() / std::string(255, 'n');
    WriteWholeFile(path, "x");
    EXPECT_EQ(ReadBytes(path), "x");
}

TEST_F(OutputFileTest, SaysWhyItCannotBeWritten) {
    const fs::path path = scratch_.Path() / "missing" / "out.prn",
                   name = scratch_.Path() / std::string(256, 'n');
    EXPECT_EQ(ThrownText([&] { OutputFile file(path); }),
              Utf8FromPath(path) + " can't be written: there is no such folder");
    EXPECT_THAT(ThrownText([&] { WriteWholeFile(name, "x"); }), testing::HasSubstr(": "));
}

TEST_F(OutputFileTest, FailsIfItCannotBeCreated) {
    EXPECT_THROW(OutputFile(scratch_.Path()), std::runtime_error) << "a folder";
    EXPECT_THROW(OutputFile(scratch_.Path() / "missing" / "out.prn"), std::runtime_error);
    EXPECT_EQ(Files(), 0u);
}

TEST_F(OutputFileTest, FailsIfItsNameHasBecomeAFolder) {
    const fs::path path = scratch_.Path() / "out.prn";
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("x"));
        fs::create_directories(path / "inside");
        EXPECT_THROW(file.Complete(), std::runtime_error);
    }
    EXPECT_EQ(Files(), 1u);
}

TEST_F(WholeFile, IsKnownByItsIdentity) {
    const fs::path file = scratch_.Write("a.prn", "x"), other = scratch_.Write("b.prn", "x");
    const fs::path missing = scratch_.Path() / "missing.prn";
    fs::create_directories(scratch_.Path() / "folder");
    fs::create_hard_link(file, scratch_.Path() / "linked.prn");
    const fs::path around = scratch_.Path() / "folder" / "..";
    EXPECT_TRUE(IsSameFile(file, around / "a.prn"));
    EXPECT_TRUE(IsSameFile(file, scratch_.Path() / "linked.prn"));
    EXPECT_TRUE(IsSameFile(missing, around / "missing.prn"));
    EXPECT_FALSE(IsSameFile(file, other));
    EXPECT_FALSE(IsSameFile(file, missing));
    EXPECT_FALSE(IsSameFile(missing, scratch_.Path() / "folder" / "missing.prn"));
    EXPECT_FALSE(IsSameFile(missing, around / "other.prn"));
}

TEST_F(WholeFile, IsNotBothReadAndWritten) {
    const fs::path a = scratch_.Write("a", "x"), b = scratch_.Write("b", "x"), c = scratch_.Path() / "c";
    const auto complaint = [](std::vector<NamedFile> outputs, std::vector<NamedFile> inputs) {
        return ThrownText<FileClash>([&] { RefuseSharedFiles(outputs, inputs); });
    };
    EXPECT_EQ(complaint({{"-o", c}, {"--to", {}}}, {{"the page", a}, {"the page", b}, {"--from", {}}}), "");
    EXPECT_EQ(complaint({{"-o", c}, {"--to", b}}, {{"the page", a}, {"the page", b}}),
              "--to " + Utf8FromPath(b) + " is the same file as the page " + Utf8FromPath(b) +
                  "; name another one");
    EXPECT_EQ(
        complaint({{"-o", c}, {"--to", c}}, {}),
        "-o " + Utf8FromPath(c) + " is the same file as --to " + Utf8FromPath(c) + "; name another one");
    EXPECT_EQ(complaint({{"-o", "-"}}, {{"the page", "-"}}), "") << "two streams";
}

TEST_F(WholeFile, ShowsPathsAsTheyWereGiven) {
    EXPECT_EQ(Utf8FromPath(AbsolutePath("folder/a.png")), "folder/a.png");
    EXPECT_THAT(Utf8FromPath(fs::absolute("b.png")), testing::Not(testing::HasSubstr("Z:")));
}

// A program under Wine can make neither links nor pipes, and gets no signals: print_script_test has these
// cases.
#ifndef _WIN32
TEST_F(OutputFileTest, FollowsALinkAndLeavesItAlone) {
    const fs::path target = scratch_.Write("target/real.prn", "before"), link = scratch_.Path() / "link.prn";
    const fs::path dangling = scratch_.Path() / "dangling.prn";
    fs::create_symlink("target/real.prn", link);
    fs::create_symlink("target/new.prn", dangling);
    WriteWholeFile(link, "after");
    WriteWholeFile(dangling, "new");
    EXPECT_EQ(ReadBytes(target), "after");
    EXPECT_EQ(ReadBytes(scratch_.Path() / "target/new.prn"), "new");
    EXPECT_TRUE(fs::is_symlink(link) && fs::is_symlink(dangling));
    EXPECT_EQ(Files(), 3u);
    EXPECT_TRUE(IsSameFile(target, link));
}

TEST_F(OutputFileTest, IsWrittenToIfItIsNoRegularFile) {
    WriteWholeFile("/dev/null", "x");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(ThrownText([] { WriteWholeFile("/dev/full", "x"); }),
              "/dev/full can't be written: there is no space left");
    const fs::path pipe = scratch_.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string came;
    std::thread reader([&] { came = ReadBytes(pipe); });
    WriteWholeFile(pipe, "through the pipe");
    reader.join();
    EXPECT_EQ(came, "through the pipe");
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(Files(), 1u);
}

TEST_F(OutputFileTest, EndsWithTheProgramOnCtrlC) {
    const fs::path path = scratch_.Write("out.prn", "before");
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const auto interrupted = [&] {
            EndCleanlyOnInterrupt();
            OutputFile file(path);
            file.Write("half");
            raise(number);
        };
        EXPECT_EXIT(interrupted(), testing::KilledBySignal(number), "");
    }
    EXPECT_EQ(ReadBytes(path), "before");
    EXPECT_EQ(Files(), 1u);
}
#endif

}  // namespace orvex::tools
