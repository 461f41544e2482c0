// The format of color profile files (*.zvp). Numbers are little-endian.
//
//   0  "ZVC"                     the mark
//   3  1 byte                    version, 1 to 5
//   4  4 bytes                   size of the whole file
//   8  4 bytes                   not used
//  12  1 byte                    not used
//  13  2 bytes                   length of the tag area, from byte 12 on
//  15  tags                      1 byte id, 2 bytes length, data
//      colors                    the variant for 600 dpi, then the one for other resolutions
//
// The name is narrow text without a terminator. The resolution codes of the print engine are two signed
// bytes: for other resolutions, then for 600 dpi. Each version stores the colors in its own way; see the
// table in profile_colors.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex {

constexpr char kProfileMark[] = "ZVC";
constexpr size_t kProfileHeaderSize = 12;
constexpr size_t kTagHeaderSize = 3;  // of a tag, and of the tag area

enum TagId : uint8_t { kNameTag = 1, kResolutionTag = 2 };
constexpr size_t kResolutionTagSize = 2;

// Room for a profile's name with its terminator: in a job, and in the list of installed profiles. A reader
// refuses a name that does not fit.
constexpr size_t kProfileNameCapacity = 512;
constexpr size_t kListedNameCapacity = 100;

// The resolution code of a profile without one: the digit '0'.
constexpr signed char kDefaultResolutionCode = '0';

}  // namespace orvex
