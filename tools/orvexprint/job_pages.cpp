#include "tools/orvexprint/job_pages.h"

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/open_page.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kTestPageTitle[] = "Test page";
constexpr char kInputTitle[] = "Standard input";

}  // namespace

JobPages::JobPages(const JobOptions& options) : options_(options) {
    for (const fs::path& page : options.pages) {
        if (!SpoolJob::IsOne(page)) continue;
        if (options.pages.size() > 1)
            throw OptionError(Utf8FromPath(page) + " is a spool file, a job by itself; print it alone");
        spooled_.emplace(options);
    }
    if (!spooled_ && !options.shadow.empty())
        throw OptionError("--shd belongs to a spool file, and " + Utf8FromPath(options.pages.front()) +
                          " is none");
}

size_t JobPages::Count() const {
    if (spooled_) return spooled_->PageCount();
    return options_.testPage ? 1 : options_.pages.size();
}

std::unique_ptr<PageSource> JobPages::Open(size_t page) const {
    return spooled_ ? spooled_->OpenPage(page) : OpenPage(options_.pages[page]);
}

std::string JobPages::NameOf(size_t page) const {
    if (!spooled_) return Utf8FromPath(options_.pages[page].filename());
    return Utf8FromPath(options_.pages.front().filename()) + ", page " + std::to_string(page + 1);
}

std::string JobPages::Title() const {
    if (!options_.title.empty()) return options_.title;
    if (options_.testPage) return kTestPageTitle;
    if (spooled_ && !spooled_->Title().empty()) return spooled_->Title();
    const fs::path& first = options_.pages.front();
    return IsStandardInput(first) ? kInputTitle : Utf8FromPath(first.filename());
}

void JobPages::LoadFonts() {
    if (spooled_) spooled_->LoadFonts();
}

void JobPages::SayLeftOut(std::ostream& out) const {
    if (!spooled_) return;
    for (const std::string& line : spooled_->LeftOut())
        out << "orvexprint: " + Utf8FromPath(options_.pages.front()) + ": " + line + "\n";
}

}  // namespace orvex::tools::print
