#include "tools/orvexview/proof_command.h"
#include "tools/common/command_line.h"

#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/open_file.h"
#include "tools/orvexview/proof.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kDescription =
    "Writes a print file as one page for a browser, which needs no network and no other file.\n"
    "\n"
    "Every page can be enlarged, with each ink on or off, or its total ink as a heat map in which pixels "
    "over "
    "the limit are\n"
    "magenta. Below are warnings, the place under the print head, the job's settings and the ink that each "
    "page takes. Equal\n"
    "pages share their pictures, and pictures of long jobs are smaller: a proof stays under 30 MB.";

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexview job.prn --html proof.html --open               shows the proof in the browser\n"
    "  orvexview job.prn --html proof.html --limit 240          the ink that this stock takes\n"
    "  orvexview job.prn --html proof.html --labels media.inf   warns of a label that is not listed there\n"
    "\n"
    "Exit status: 0 when all went well; 1 when the file is not sound (the proof has what can be read of it) "
    "or "
    "something\n"
    "can't be written; 2 for a wrong command line.";

constexpr double kLeastLimit = 1;
constexpr double kMostLimit = 400;

}  // namespace

bool IsProofCommand(const std::vector<std::string>& arguments) {
    return HasOption(arguments, "--html") || HasOption(arguments, "--open");
}

int RunProofCommand(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexview", kDescription, "FILE --html PROOF [options]", kExamples, "--html --help");
    line.Files("FILE", "", "The print file");
    line.Require("FILE");
    line.Text("--html", "PROOF", "The proof to write");
    line.Require("--html");
    line.Flag("--open", "Shows the proof in the browser");
    line.Text("--limit", "PERCENT", "The most ink that the stock takes, all inks together; default: 300");
    line.Text("--labels", "FILE", "The labels of the printer, a media.inf");
    if (!line.Read(arguments, out)) return 0;
    ProofOptions options;
    options.file = line.Value("FILE").value_or("");
    options.html = line.Value("--html").value_or("");
    options.open = line.Has("--open");
    options.labels = line.Value("--labels").value_or("");
    if (const auto limit = line.Value("--limit")) {
        options.limit = NumberIn("--limit", *limit, kLeastLimit, kMostLimit, "1 to 400");
    }
    WriteProof(options, out);
    if (options.open) OpenForUser(PathFromUtf8(options.html));
    return 0;
}

}  // namespace orvex::tools::view
