// orvexview: shows a print file.
#include <exception>
#include <iostream>

#include "host/utf8_arguments.h"
#include "viewer/options.h"
#include "viewer/viewing.h"

int main(int argc, char** argv) {
    int status = 0;
    const std::optional<viewer::Options> options = viewer::ReadOptions(Utf8Arguments(argc, argv), status);
    if (!options) return status;
    try {
        viewer::ShowPrintFile(*options, std::cout);
        return 0;
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "orvexview: " << options->file << ": " << error.what() << "\n";
        return 1;
    }
}
