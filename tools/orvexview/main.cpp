// The program orvexview.
#include <iostream>

#include "tools/common/wide_text.h"
#include "tools/orvexview/viewing.h"

int main(int argc, char** argv) {
    return orvex::tools::view::RunOrvexView(orvex::tools::Utf8Arguments(argc, argv), std::cout, std::cerr);
}
