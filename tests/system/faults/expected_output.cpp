#include "tests/system/faults/expected_output.h"

#include <algorithm>
#include <stdexcept>

#include "tools/orvexview/print_file.h"

namespace orvex {

using namespace tools;
namespace {

// How many bytes the printer had got when the call came.
size_t WrittenBefore(const std::vector<WatchedCall>& calls, size_t number) {
    size_t bytes = 0;
    for (size_t i = 0; i < number; ++i) {
        if (calls[i].function == "WritePrinter") bytes += calls[i].bytes;
    }
    return bytes;
}

// Whether `written` is `whole` but for the end, or all, of the variable's text.
bool HasTextCut(const std::string& written, const std::string& whole, const std::string& variable) {
    const size_t text = whole.find(variable + "=\"") + variable.size() + 2;
    const size_t end = whole.find('"', text);
    if (written.size() > whole.size() || whole.size() - written.size() > end - text) return false;
    const size_t cut = whole.size() - written.size();
    return written == whole.substr(0, end - cut) + whole.substr(end);
}

bool IsSamePage(const tools::view::PrintedPage& page, const tools::view::PrintedPage& other) {
    const auto geometry = [](const tools::view::PrintedPage& of) {
        return std::tuple(of.resolutionCode, of.width, of.length, of.top, of.rowWidth, of.announcedRows);
    };
    return geometry(page) == geometry(other) && ReadRows(page) == ReadRows(other);
}

tools::view::PrintFile Parse(const std::string& written) {
    return tools::view::ParsePrintFile({written.begin(), written.end()});
}

// The page that a call in "DrvSendPage n" belongs to.
size_t PageOf(const WatchedCall& call) {
    return std::stoul(call.place.substr(call.place.find(' ')));
}

std::string PageLeftOutFault(size_t page, const CleanJobs& clean, const std::string& written) {
    const tools::view::PrintFile whole =
        Parse(clean.at(page == 1 ? JobInputs::kNoThumbnail : JobInputs::kAll).written);
    const tools::view::PrintFile printed = Parse(written);
    if (printed.header != whole.header) return "the job header is another";
    if (printed.pages.size() + 1 != whole.pages.size()) return "not all of the other pages are there";
    for (size_t i = 0; i < printed.pages.size(); ++i) {
        if (!IsSamePage(printed.pages[i], whole.pages[i < page - 1 ? i : i + 1]))
            return "page " + std::to_string(i + 1) + " is another";
    }
    return "";
}

std::string Compare(const std::string& written, const std::string& expected) {
    if (written == expected) return "";
    const auto [at, other] = std::mismatch(written.begin(), written.end(), expected.begin(), expected.end());
    return std::to_string(written.size()) + " bytes are printed, not " + std::to_string(expected.size()) +
           "; the first other one is number " + std::to_string(at - written.begin());
}

}  // namespace

std::string OutputFault(const Outcome& outcome, const PlacedCall& failing, const CleanJobs& clean,
                        const std::string& written) try {
    const std::string& whole = clean.at(outcome.like).written;
    const size_t before = WrittenBefore(clean.at(JobInputs::kAll).calls, failing.number);
    switch (outcome.prints) {
        case Prints::kAll:
            if (outcome.cut == nullptr || HasTextCut(written, whole, outcome.cut))
                return outcome.cut == nullptr ? Compare(written, whole) : "";
            return std::string(outcome.cut) + " is not cut, or something else is another";
        case Prints::kUntilThen:
            return Compare(written, whole.substr(0, before));
        case Prints::kAllButThat:
            return Compare(written, std::string(whole).erase(before, failing.call.bytes));
        case Prints::kAllButPage:
            return PageLeftOutFault(PageOf(failing.call), clean, written);
    }
    return "";
} catch (const std::runtime_error& error) {
    return error.what();
}

}  // namespace orvex
