// Dictionaries of the fuzzed formats in libFuzzer's form: one quoted word a line.
#pragma once

#include <string_view>

namespace orvex::fuzz {

struct FuzzDictionary {
    std::string_view target;
    const char* words;
};

inline constexpr FuzzDictionary kDictionaries[] = {
    {"settings",
     "\"[UI]\"\n\"[Driver]\"\n\"[Color]\"\n\"Language=\"\n\"Add_Thumb=\"\n\"Default_Media="
     "\"\n\"\\x0D\\x0A\"\n\"18446744073709551615\"\n\"4294967296\"\n\"-\"\n"},
    {"profile_names",
     "\"[\\x00D\\x00E\\x00U\\x00]\\x00\"\n\"a\\x00.\\x00z\\x00v\\x00p\\x00=\\x00\"\n"
     "\"\\x0D\\x00\\x0A\\x00\"\n\"\\xFF\\xFE\"\n"
     "\"CON\"\n\"PRN\"\n\"aux\"\n\"NUL\"\n\"COM\"\n\"lpt\"\n\"IN$\"\n\"OUT$\"\n\" .zvp\"\n\"\\xC2\\xB9\"\n"},
    {"media_import", "\"[Media]\"\n\"\\\"\"\n\", \"\n\"\\x0D\\x0A\"\n\"-2147483648\"\n\"4294967296\"\n"},
    {"label_data", "\"258\"\n\"65535\"\n\"8.500\"\n\"-0.1\"\n\"9999999\"\n"},
    {"profile", "\"ZVC\"\n\"\\x01\"\n\"\\x02\\x02\\x00\"\n\"\\x05\"\n"},
    {"output_callback", "\"@PJL COMMENT\"\n\"\\x1B*o0M\"\n\"\\x1B*o-1M\"\n"},
    {"print_file",
     "\"\\x1B%-12345X\"\n\"@PJL\"\n\"@PJL COMMENT \"\n\"@PJL SET \"\n\"@PJL JOB NAME=\\\"\"\n"
     "\"@PJL ENTER LANGUAGE=STANDIN\\x0A\"\n\"QRV_THUMBNAIL=\\\"\"\n\"\\x1B*o-1M\"\n"},
    {"tool_profile", "\"ZVC\"\n\"\\x01\"\n\"\\x02\\x02\\x00\"\n\"\\x05\"\n\"\\xFF\\xFF\\xFF\\xFF\"\n"},
    {"recipe",
     "\"\\\"name\\\":\"\n\"\\\"inks\\\":{\"\n\"\\\"density\\\":[\"\n\"\\\"dot_gain\\\":\"\n"
     "\"\\\"black_density\\\":\"\n\"\\\"black_start\\\":\"\n\"\\\"ink_limit\\\":\"\n\"\\\"scale\\\":{\"\n"
     "\"\\\"resolution_codes\\\":{\"\n\"\\\"600\\\":\"\n\"\\\"other\\\":\"\n\"\\\"comment\\\":"
     "\"\n\"1e308\"\n\"0.2\"\n"},
    {"picture",
     "\"\\xFF\\xD8\\xFF\\xE0\"\n\"JFIF\"\n\"Exif\\x00\\x00MM\\x00\"\n\"\\xFF\\xDA\"\n\"\\xFF\\xC2\"\n\"\\xFF"
     "\\xD9\"\n"
     "\"\\x89PNG\\x0D\\x0A\\x1A\\x0A\"\n\"IHDR\"\n\"IDAT\"\n\"PLTE\"\n\"tRNS\"\n\"iCCP\"\n\"gAMA\"\n\"cHRM\""
     "\n\"pHYs\"\n"
     "\" EMF\"\n\"\\x01\\x00\\x00\\x00\"\n\"\\x0E\\x00\\x00\\x00\"\n"
     "\"GIF89a\"\n\"\\x21\\xF9\\x04\"\n\"BM\"\n\"ICC_PROFILE\\x00\"\n"},
    {"thumbnail", "\"\\x00\\x00\"\n\"\\x01\\x01\"\n\"\\x80\\x59\\x40\"\n"},
    {"adjustment",
     "\"\\x00\\x00\\x00\\x00\\x00\\x00\\x00\"\n\"\\x9C\"\n\"\\xFF\\xFF\\xFF\\xFF\"\n\"\\xF0\\x7F\"\n"},
    {"registry", "\"[DevMode]\"\n\"\\\"DevMode\\\"=\"\n\"hex:\"\n\"hex(3):\"\n\",\\x5C\\x0D\\x0A  \"\n"},
    {"icc",
     "\"acsp\"\n\"CMYK\"\n\"prtr\"\n\"Lab \"\n\"XYZ \"\n\"B2A0\"\n\"A2B0\"\n\"mft1\"\n\"mft2\"\n\"mBA "
     "\"\n\"mAB \"\n"
     "\"curv\"\n\"para\"\n\"desc\"\n\"mluc\"\n\"wtpt\"\n\"bkpt\"\n"},
};

constexpr const char* DictionaryOf(std::string_view target) {
    for (const FuzzDictionary& dictionary : kDictionaries) {
        if (dictionary.target == target) return dictionary.words;
    }
    return nullptr;
}

}  // namespace orvex::fuzz
