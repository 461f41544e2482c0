#include "tools/common/whole_file.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"

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
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(missing); }), Utf8FromPath(missing) + " can't be opened");
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

TEST_F(OutputFileTest, LeavesTheUnfinishedFilesOfOthersAlone) {
    const fs::path other = scratch_.Write("out.prn.part0", "another's");
    WriteWholeFile(scratch_.Path() / "out.prn", "mine");
    EXPECT_EQ(ReadBytes(other), "another's");
    EXPECT_EQ(ReadBytes(scratch_.Path() / "out.prn"), "mine");
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

}  // namespace orvex::tools
