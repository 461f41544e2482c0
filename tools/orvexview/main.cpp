// The program orvexview.
#include <iostream>

#include "tools/common/interrupt.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/viewing.h"

int main(int argc, char** argv) {
    orvex::tools::EndCleanlyOnInterrupt();
    return orvex::tools::view::RunOrvexView(orvex::tools::Utf8Arguments(argc, argv), std::cout, std::cerr);
}
