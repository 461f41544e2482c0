// The built-in self-test page, which shows whether page and inks are in their places, and the job's settings.
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

// The text of the test page: program and date beside the arrow, a heading, and a line for each value.
struct TestPageText {
    std::string heading;
    std::vector<NamedValue> values;
    std::string program = {};  // with its version
    std::string date = {};
};

// Draws on a white page of `dpi`: marks in the four corners, an arrow to the top of the page, millimeter
// rulers from its left and top edges, a wedge for each ink, fine lines, a barcode in pure black and the text.
// Text shrinks and wraps where it would be cut. Parts that a small label has no room for are left out, the
// last ones first.
void DrawTestPage(Canvas& page, int dpi, const TestPageText& text);

}  // namespace orvex::tools::print
