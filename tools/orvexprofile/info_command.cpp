// orvexprofile info FILE: what a profile holds, and whether the driver accepts it.
#include <memory>

#include "tools/common/printable_text.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/profile_reader.h"
#include "tools/orvexprofile/report.h"

namespace orvex::tools::profile {

namespace {

std::string TagKind(const TagFacts& tag) {
    switch (tag.id) {
        case kNameTag:
            return "name";
        case kResolutionTag:
            return "resolution codes";
        default:
            return "unknown kind " + std::to_string(tag.id);
    }
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
        if (name->size() > kLongestShownName) {
            out << "             longer than " << kLongestShownName
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

// Loads a variant through the driver and reports its inks. False when the driver refuses.
bool ReportVariant(std::ostream& out, const std::string& path, int version, PrintVariant variant) {
    if (!LoadIntoDriver(path, variant)) return false;
    ReportStatistics(out, variant == PrintVariant::kAt600 ? "inks at 600 dpi" : "inks at other resolutions",
                     MeasureInks(version, LoadedEntries(version)));
    return true;
}

void ReportFile(std::ostream& out, const std::string& path, const ProfileFacts& facts) {
    out << path << '\n';
    out << "  mark       \"" << PrintableText(facts.magic) << "\"\n";
    out << "  version    " << facts.version;
    if (facts.version >= kFirstVersion && facts.version <= kLastVersion) {
        out << ": " << LayoutOf(facts.version).description;
    }
    out << "\n  size       " << GroupedNumber(facts.size) << " bytes, " << GroupedNumber(facts.storedSize)
        << " by its header\n";
    out << "  tag area   " << facts.tagAreaLength << " bytes\n";
    ReportTags(out, facts);
}

// The verdict is the driver's own; the reason is told in its reader's words.
bool Inspect(std::ostream& out, const std::string& path) {
    const ProfileFacts facts = InspectProfile(path);
    if (facts.size > 0) ReportFile(out, path, facts);
    bool accepted = facts.Accepted();
    if (accepted) {
        ReportTagContents(out, facts);
        accepted = ReportVariant(out, path, facts.version, PrintVariant::kAt600) &&
                   ReportVariant(out, path, facts.version, PrintVariant::kOther);
    }
    out << "  driver     ";
    if (accepted) {
        out << "accepts the file\n";
    } else {
        out << "refuses the file and prints through its built-in conversion: " << PrintableText(facts.problem)
            << '\n';
    }
    return accepted;
}

}  // namespace

void AddInfoCommand(CLI::App& app, std::ostream& out, CommandResult& result) {
    CLI::App* command = app.add_subcommand(
        "info", "Shows what a profile holds, and whether the driver accepts it (exit status 1 when not)");
    const auto path = std::make_shared<std::string>();
    command->add_option("FILE", *path, "The profile")->required()->type_name("");
    command->callback([&out, &result, path] { result.status = Inspect(out, *path) ? 0 : 1; });
}

}  // namespace orvex::tools::profile
