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

size_t FilesIn(const fs::path& folder) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

}  // namespace

TEST(WholeFile, IsReadByteByByte) {
    const ScratchFolder scratch;
    std::string bytes(3'000'000, 'x');
    bytes[2'000'000] = '\0';
    EXPECT_EQ(ReadWholeText(scratch.Write("large.bin", bytes)), bytes);
    EXPECT_TRUE(ReadWholeFile(scratch.Write("empty.bin", "")).empty());
}

TEST(WholeFile, IsRefusedIfItIsAFolderOrMissingOrTooLarge) {
    const ScratchFolder scratch;
    const fs::path missing = scratch.Path() / "missing", file = scratch.Write("three.bin", "abc");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(scratch.Path()); }),
              Utf8FromPath(scratch.Path()) + " is a folder");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(missing); }), Utf8FromPath(missing) + " can't be opened");
    EXPECT_EQ(ThrownText([&] { ReadWholeFile(file, 2); }), Utf8FromPath(file) + " is too large");
    EXPECT_EQ(ReadWholeFile(file, 3).size(), 3u);
}

TEST(OutputFile, AppearsWhenItIsComplete) {
    const ScratchFolder scratch;
    const fs::path path = scratch.Path() / PathFromUtf8("Etikett \xC3\xB6.prn");
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("one "));
        EXPECT_TRUE(file.Write({"t\0wo", 4}));
        EXPECT_EQ(file.Size(), 8u);
        EXPECT_FALSE(fs::exists(path));
        file.Complete();
    }
    EXPECT_EQ(ReadBytes(path), std::string("one t\0wo", 8));
    EXPECT_EQ(FilesIn(scratch.Path()), 1u);
}

TEST(OutputFile, LeavesNothingIfItIsNotCompleted) {
    const ScratchFolder scratch;
    const fs::path path = scratch.Write("out.prn", "before");
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("half"));
    }
    EXPECT_EQ(ReadBytes(path), "before");
    EXPECT_EQ(FilesIn(scratch.Path()), 1u);
}

TEST(OutputFile, ReplacesAnEarlierFile) {
    const ScratchFolder scratch;
    const fs::path path = scratch.Write("out.prn", "before, and longer");
    WriteWholeFile(path, "after");
    EXPECT_EQ(ReadBytes(path), "after");
    EXPECT_EQ(FilesIn(scratch.Path()), 1u);
}

TEST(OutputFile, LeavesTheUnfinishedFilesOfOthersAlone) {
    const ScratchFolder scratch;
    const fs::path other = scratch.Write("out.prn.part0", "another's");
    WriteWholeFile(scratch.Path() / "out.prn", "mine");
    EXPECT_EQ(ReadBytes(other), "another's");
    EXPECT_EQ(ReadBytes(scratch.Path() / "out.prn"), "mine");
}

TEST(OutputFile, FailsIfItCannotBeCreated) {
    const ScratchFolder scratch;
    EXPECT_THROW(OutputFile(scratch.Path()), std::runtime_error) << "a folder";
    EXPECT_THROW(OutputFile(scratch.Path() / "missing" / "out.prn"), std::runtime_error);
    EXPECT_EQ(FilesIn(scratch.Path()), 0u);
}

TEST(OutputFile, FailsIfItsNameHasBecomeAFolder) {
    const ScratchFolder scratch;
    const fs::path path = scratch.Path() / "out.prn";
    {
        OutputFile file(path);
        EXPECT_TRUE(file.Write("x"));
        fs::create_directories(path / "inside");
        EXPECT_THROW(file.Complete(), std::runtime_error);
    }
    EXPECT_EQ(FilesIn(scratch.Path()), 1u);
}

}  // namespace orvex::tools
