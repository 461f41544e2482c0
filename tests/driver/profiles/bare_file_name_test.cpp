#include "driver/profiles/profile_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/driver/profiles/profile_fixture.h"

namespace orvex {

using namespace tools;
using namespace std::string_literals;

namespace {

// Widens text of a code page in which 0x95 0x5C is one character, although 0x5C alone is the backslash.
INT WINAPI WidenDoubleBytes(UINT, DWORD, LPCSTR text, INT length, LPWSTR wide, INT) {
    INT written = 0;
    for (INT i = 0; i < length; ++written) {
        const bool pair = text[i] == '\x95' && i + 1 < length;
        wide[written] = pair ? 0x8868 : static_cast<WCHAR>(text[i]);
        i += pair ? 2 : 1;
    }
    return written;
}

// Widens text of the code page in which every byte is the character of that number.
INT WINAPI WidenLatin1(UINT, DWORD, LPCSTR text, INT length, LPWSTR wide, INT) {
    for (INT i = 0; i < length; ++i) wide[i] = static_cast<unsigned char>(text[i]);
    return length;
}

// Makes a scratch folder current, with profiles inside its folder "profiles" and outside of it.
class NamedProfile : public ProfileFixture {
  protected:
    NamedProfile() : before_(std::filesystem::current_path()) {
        const std::string bytes = SmallProfile(NameTag("Found"));
        for (const char* name :
             {"profiles/in.zvp", "profiles/a..b c.zvp", "profiles/sub/deep.zvp", "out.zvp"}) {
            folder_.Write(name, bytes);
        }
        // Only the native file system accepts such a name.
        std::ofstream(folder_.Path() / "profiles" / "c:in.zvp", std::ios::binary) << bytes;
        std::filesystem::current_path(folder_.Path());
    }
    ~NamedProfile() override { std::filesystem::current_path(before_); }

    std::filesystem::path before_;
};

}  // namespace

TEST(BareFileName, HasNoSeparatorAndNoDrive) {
    for (const char* name : {"a", "a.zvp", "a b..zvp", "...", "..a", ".zvp"})
        EXPECT_TRUE(IsBareFileName(name)) << name;
    for (const char* name :
         {"", "..", "a\\b", "a/b", "\\a", "/a", "a\\", "a/", "..\\a", "../a", "c:", "c:a", "a:b", ":"}) {
        EXPECT_FALSE(IsBareFileName(name)) << name;
    }
}

TEST(BareFileName, IsNotADevices) {
    for (const char* name :
         {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "COM1", "COM9", "LPT1", "LPT9"}) {
        for (const char* end : {"", ".", ".zvp", ".a.zvp", "..", " ", "  ", " .zvp", " . ", ". .zvp"}) {
            std::string text = std::string(name) + end;
            EXPECT_FALSE(IsBareFileName(text.c_str())) << text;
            for (char& c : text) c = static_cast<char>(tolower(c));
            EXPECT_FALSE(IsBareFileName(text.c_str())) << text;
        }
    }
    for (const char* name : {"nUl.zvp", "Com5.ZVP", "cOnOuT$", "NUL:", "NUL:stream", "com1:.zvp"})
        EXPECT_FALSE(IsBareFileName(name)) << name;
}

TEST(BareFileName, MayResembleADevices) {
    for (const char* name :
         {"CO",        "CONN",     "CON1", "NUL1.zvp",  "NULL.zvp",  "a.NUL",   "aNUL",    " NUL",
          ".NUL",      "NUL_.zvp", "N UL", "NUL a.zvp", "COM",       "COM.zvp", "COM0",    "COM10",
          "COM11.zvp", "COM#",     "COMA", "LPT",       "LPT0.zvp",  "CONIN",   "CONIN$$", "CONOUT",
          "CLOCK$",    "CONIND",   " ",    " .zvp",     "COM1a.zvp", "xCOM1"}) {
        EXPECT_TRUE(IsBareFileName(name)) << name;
    }
}

TEST(BareFileName, IsNotAPortsWithASuperscriptNumber) {
    const ImportPatch patch(nullptr, "MultiByteToWideChar", reinterpret_cast<void*>(&WidenLatin1));
    for (const std::string port : {"COM", "lpt"}) {
        for (const char* digit : {"\xB9", "\xB2", "\xB3"}) {
            EXPECT_FALSE(IsBareFileName((port + digit).c_str())) << port << digit;
            EXPECT_FALSE(IsBareFileName((port + digit + " .zvp").c_str())) << port << digit;
            EXPECT_TRUE(IsBareFileName((port + "1" + digit).c_str())) << port << digit;
        }
        for (const char* digit : {"\xB0", "\xB1", "\xB4", "\xB8", "\xBA", "\xE1"})
            EXPECT_TRUE(IsBareFileName((port + digit).c_str())) << port << digit;
    }
}

TEST(BareFileName, IsShortEnoughForAPath) {
    EXPECT_TRUE(IsBareFileName(std::string(511, 'a').c_str()));
    EXPECT_FALSE(IsBareFileName(std::string(512, 'a').c_str()));
    EXPECT_FALSE(IsBareFileName((std::string(600, 'a') + "\\b").c_str()));
}

TEST(BareFileName, MayHaveACharacterWhoseSecondByteLooksLikeASeparator) {
    const ImportPatch patch(nullptr, "MultiByteToWideChar", reinterpret_cast<void*>(&WidenDoubleBytes));
    EXPECT_TRUE(IsBareFileName("\x95\x5C.zvp"));
    EXPECT_FALSE(IsBareFileName("\x95\x5C\x5C.zvp"));
}

TEST_F(NamedProfile, IsReadFromTheProfilesFolder) {
    for (const char* name : {"in.zvp", "a..b c.zvp"}) {
        EXPECT_EQ(Load(std::string("profiles\\") + name), 5) << name;
        EXPECT_STREQ(name_, "Found");
    }
}

TEST_F(NamedProfile, IsNotOpenedWhenItIsADevice) {
    for (const std::string name : {"NUL", "nul.zvp", "con .zvp", "COM1.zvp", "lpt9"}) {
        const std::string path = "profiles\\" + name;
#ifndef _WIN32
        // Windows would open the device; natively it is a file, which must not be opened either.
        folder_.Write("profiles/" + name, SmallProfile(NameTag("Device")));
#endif
        ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"});
        EXPECT_STREQ(name_, "asked.zvp");
    }
}

TEST_F(NamedProfile, IsNotOpenedOutsideTheProfilesFolder) {
    const std::string absolute = (folder_.Path() / "out.zvp").string();
    for (const std::string& name : {"..\\out.zvp"s, "../out.zvp"s, "sub\\deep.zvp"s, "sub/deep.zvp"s,
                                    "..\\profiles\\in.zvp"s, "c:in.zvp"s, ".."s, absolute}) {
        const std::string path = "profiles\\" + name;
        ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"});
        EXPECT_STREQ(name_, "asked.zvp");
        EXPECT_EQ(code_, 48);
    }
}

}  // namespace orvex
