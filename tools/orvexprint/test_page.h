// The built-in self-test page: whether the printer puts the whole page where it belongs, each ink where it
// belongs, and what the job was set to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/common/canvas.h"

namespace orvex::tools::print {

struct NamedValue {
    std::string name;
    std::string value;
};

// What the test page tells in text, below a heading a line each.
struct TestPageText {
    std::string heading;
    std::vector<NamedValue> values;
};

// Draws onto a white page of `dpi`: marks in the four corners, an arrow to the page's top, millimetre rulers
// from its left and its top edge, a wedge for each ink, fine lines, a barcode in pure black and the text.
// What the label has no room for is left out from the bottom up.
void DrawTestPage(Canvas& page, int dpi, const TestPageText& text);

}  // namespace orvex::tools::print
