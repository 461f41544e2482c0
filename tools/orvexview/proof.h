// A proof: a print file as one page for a browser, written sheet by sheet.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::view {

struct ProofOptions {
    std::string file;    // the print file; all names are UTF-8
    std::string html;    // the proof
    std::string labels;  // the printer's labels, a media.inf; empty: not checked
    double limit = 300;  // most total ink, in percent
    bool open = false;
    uint64_t pictureBytes = 20'000'000;  // of all pictures, before they become text; tests make it small
};

// Writes the proof. Throws std::runtime_error; if the file can be read only in part, after the proof of that
// part is complete.
void WriteProof(const ProofOptions& options, std::ostream& out);

}  // namespace orvex::tools::view
