// orvexprofile info FILE: shows what a profile contains, and whether the driver accepts it.
#include <memory>

#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/loaded_profile.h"

namespace orvex::tools::profile {

namespace {

std::string TagKind(const TagFacts& tag) {
    if (tag.id == kNameTag) return "name";
    return tag.id == kResolutionTag ? "resolution codes" : "unknown kind " + std::to_string(tag.id);
}

void ReportTags(std::ostream& out, const ProfileFacts& facts) {
    for (const TagFacts& tag : facts.tags) {
        out << "  tag at " << tag.offset << "  " << TagKind(tag) << ", " << tag.length << " bytes";
        if (tag.id == kNameTag) out << ": \"" << PrintableText(tag.data) << '"';
        out << '\n';
    }
}

void ReportTagContents(std::ostream& out, const ProfileFacts& facts) {
    if (const auto name = facts.Name()) {
        out << "  name       " << PrintableText(*name) << '\n';
        if (name->size() > kLongestListedName) {
            out << "             longer than " << kLongestListedName
                << " bytes: users see the file's name, unless profilenames.inf has another\n";
        }
    } else {
        out << "  name       none: users see the file's name\n";
    }
    if (const auto codes = facts.Codes()) {
        out << "  codes      " << int{codes->other} << " for other resolutions, " << int{codes->at600}
            << " for 600 dpi\n";
    } else {
        out << "  codes      none: the driver uses its own\n";
    }
}

void ReportInks(std::ostream& out, const char* title, int version) {
    ReportStatistics(out, title, MeasureInks(version, LoadedEntries(version)));
}

void ReportFile(std::ostream& out, const std::string& path, const ProfileFacts& facts) {
    out << path << '\n';
    out << "  mark       \"" << PrintableText(facts.mark) << "\"\n";
    out << "  version    " << facts.version;
    if (facts.version >= kFirstVersion && facts.version <= kLastVersion) {
        out << ": " << LayoutOf(facts.version).description;
    }
    out << "\n  size       " << GroupedNumber(facts.size) << " bytes, " << GroupedNumber(facts.storedSize)
        << " by its header\n";
    out << "  tag area   " << facts.tagAreaLength << " bytes\n";
    ReportTags(out, facts);
}

// Reports the file and the verdict of the driver's reader. Returns whether the driver accepts the file.
bool Inspect(std::ostream& out, const std::string& path) {
    CheckReadable(path);
    ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kAt600);
    if (facts.size > 0) ReportFile(out, path, facts);
    if (facts.Accepted()) {
        ReportTagContents(out, facts);
        ReportInks(out, "inks at 600 dpi", facts.version);
        facts = LoadIntoDriver(path, PrintVariant::kOther);
    }
    if (facts.Accepted()) ReportInks(out, "inks at other resolutions", facts.version);
    out << "  driver     ";
    if (facts.Accepted()) {
        out << "accepts the file\n";
    } else {
        out << "refuses the file and prints through its built-in conversion: " << PrintableText(facts.problem)
            << '\n';
    }
    return facts.Accepted();
}

}  // namespace

void AddInfoCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command = app.add_subcommand(
        "info", "Shows what a profile holds, and whether the driver accepts it (exit status 1 when not)");
    const auto path = std::make_shared<std::string>();
    command->add_option("FILE", *path, "The profile")->required()->type_name("");
    command->callback([&out, path] {
        if (!Inspect(out, *path)) throw CLI::RuntimeError(1);  // ends the program with this status
    });
}

}  // namespace orvex::tools::profile
