// Plain definition of a page's thumbnail.
#pragma once

#include <string>

#include "tests/plain/driver/log.h"
#include "tests/plain/driver/world.h"

namespace orvex::plain {

// The beginning of a text that replaces an encoded thumbnail: size and pixels follow, so that
// no other encoder has to give the same bytes.
inline constexpr char kPicture[] = "picture ";

// Returns that text. The pixels are red, green, blue and alpha, a byte each.
std::string PictureText(int32_t width, int32_t height, const std::string& rgba);

// Returns the thumbnail of a page of 32 bits per pixel, whose scan lines are taken to lie side by side.
// A page may be too narrow or too low for its thumbnail to have pixels.
std::string Thumbnail(const Installation& installation, const PageBits& page, Log& log);

}  // namespace orvex::plain
