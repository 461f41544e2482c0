// A TrueType font of one's own: each of the letters A to Z is a black square that fills the em. Text in it is
// the same in every build, and no machine has it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/tools/common/byte_maker.h"

namespace orvex::tools {

constexpr unsigned kBoxEm = 1000;
constexpr unsigned kBoxLetters = 26;

inline std::string BoxFontNames(std::string_view family) {
    std::string texts;
    ByteMaker names;
    const std::string_view each[] = {family, "Regular", family, family};
    const unsigned ids[] = {1, 2, 4, 6};  // family, style, full name, PostScript's name
    names.Big16(0).Big16(4).Big16(6 + 4 * 12);
    for (size_t i = 0; i < 4; ++i) {
        names.Big16(3).Big16(1).Big16(0x409).Big16(ids[i]).Big16(each[i].size() * 2).Big16(texts.size());
        for (const char letter : each[i]) texts += {'\0', letter};
    }
    return names.Bytes() + texts;
}

inline std::string BoxFontCharacters() {
    ByteMaker map;
    map.Big16(0).Big16(1).Big16(3).Big16(1).Big32(12);                    // one table: Windows, Unicode
    map.Big16(4).Big16(84).Big16(0).Big16(4).Big16(4).Big16(1).Big16(0);  // format 4 with two segments
    map.Big16('Z').Big16(0xFFFF).Big16(0).Big16('A').Big16(0xFFFF);
    map.Big16(0).Big16(1).Big16(4).Big16(0);  // deltas, then the distance of the segment's glyphs
    for (unsigned i = 0; i < kBoxLetters; ++i) map.Big16(1);
    return map.Bytes();
}

inline std::string BoxFontOs2() {
    ByteMaker os2;
    os2.Big16(1).Big16(kBoxEm).Big16(400).Big16(5).Zeros(2 + 20 + 2 + 10);
    os2.Big32(1).Zeros(12).Text("ORVX").Big16(0x40).Big16('A').Big16('Z');
    os2.Big16(kBoxEm).Big16(0).Big16(0).Big16(kBoxEm).Big16(0).Big32(1).Big32(0);
    return os2.Bytes();
}

// Returns the font's file.
inline std::string MakeBoxFont(std::string_view family) {
    ByteMaker head, hhea, maxp, metrics, locations, glyphs, post;
    head.Big32(0x10000).Big32(0x10000).Big32(0).Big32(0x5F0F3CF5).Big16(3).Big16(kBoxEm).Zeros(16);
    head.Big16(0).Big16(0).Big16(kBoxEm).Big16(kBoxEm).Big16(0).Big16(8).Big16(2).Big16(0).Big16(0);
    hhea.Big32(0x10000).Big16(kBoxEm).Big16(0).Big16(0).Big16(kBoxEm).Zeros(6).Big16(1).Zeros(14).Big16(2);
    maxp.Big32(0x10000).Big16(2).Big16(4).Big16(1).Zeros(4).Big16(1).Zeros(16);
    metrics.Big16(kBoxEm).Big16(0).Big16(kBoxEm).Big16(0);
    glyphs.Big16(1).Big16(0).Big16(0).Big16(kBoxEm).Big16(kBoxEm).Big16(3).Big16(0).Text("\1\1\1\1");
    glyphs.Big16(0).Big16(0).Big16(kBoxEm).Big16(0);                 // steps to the right
    glyphs.Big16(0).Big16(kBoxEm).Big16(0).Big16(0x10000 - kBoxEm);  // steps upward
    glyphs.FillUpTo(4);
    locations.Big16(0).Big16(0).Big16(glyphs.Size() / 2);
    post.Big32(0x30000).Zeros(28);
    const std::vector<std::pair<const char*, std::string>> tables = {
        {"OS/2", BoxFontOs2()},      {"cmap", BoxFontCharacters()}, {"glyf", glyphs.Bytes()},
        {"head", head.Bytes()},      {"hhea", hhea.Bytes()},        {"hmtx", metrics.Bytes()},
        {"loca", locations.Bytes()}, {"maxp", maxp.Bytes()},        {"name", BoxFontNames(family)},
        {"post", post.Bytes()}};
    ByteMaker directory, contents;
    directory.Big32(0x10000).Big16(tables.size()).Big16(128).Big16(3).Big16(tables.size() * 16 - 128);
    const size_t contentsAt = directory.Size() + tables.size() * 16;
    for (const auto& [name, table] : tables) {
        directory.Text(name).Big32(0).Big32(contentsAt + contents.Size()).Big32(table.size());
        contents.Text(table).FillUpTo(4);
    }
    return directory.Bytes() + contents.Bytes();
}

}  // namespace orvex::tools
