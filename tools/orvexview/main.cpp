// The program orvexview.
#include <exception>
#include <iostream>

#include "tools/common/wide_text.h"
#include "tools/orvexview/options.h"
#include "tools/orvexview/print_file.h"
#include "tools/orvexview/viewing.h"

using namespace orvex::tools;
using namespace orvex::tools::view;

int main(int argc, char** argv) {
    int status = 0;
    const std::optional<Options> options = ReadOptions(Utf8Arguments(argc, argv), status);
    if (!options) return status;
    try {
        ShowPrintFile(*options, std::cout);
        return 0;
    } catch (const PrintFileError& error) {
        std::cerr << "orvexview: " << options->file << ": " << error.what() << "\n";
    } catch (const std::exception& error) {
        std::cerr << "orvexview: " << error.what() << "\n";
    }
    return 1;
}
