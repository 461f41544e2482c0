#include "tools/orvexview/log_command.h"

#include <algorithm>
#include <memory>

#include "tools/common/command_line.h"
#include "tools/common/number_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/trace/read_trace.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kDescription =
    "Shows the driver's diagnostic log as a tree of operations, each with its time (UTC), duration and "
    "result.\n"
    "\n"
    "Dumps of the device mode are folded to the fields that changed since the thread's last dump. Errors are "
    "marked with\n"
    "\"!\"; those that a sound job logs too are explained instead. Every job is a device's set-up and the "
    "document that was\n"
    "printed with it. The log names threads, not processes.";

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexview --log orvexgdi.txt                       everything\n"
    "  orvexview --log orvexgdi.txt --errors              errors alone, and the operations around them\n"
    "  orvexview --log orvexgdi.txt --slow 50ms --job 3   what took the third job 50 ms or more\n"
    "  orvexview --log orvexgdi.txt --html log.html       the tree as a page to unfold in a browser\n"
    "\n"
    "Exit status: 0 when all went well; with --errors, 1 when there are some, with --job in that job; 1 when "
    "a file can't\n"
    "be read or written, is no log or has no such job; 2 for a wrong command line.";

struct LogOptions {
    std::string file;
    std::string html;
    std::string slow;
    std::string job;
    bool json = false;
    bool errors = false;
};

// Parses "50ms", "1.5s" or "50", which are milliseconds.
int64_t DurationOf(const std::string& text) {
    double unit = 1;
    std::string_view number = text;
    if (number.ends_with("ms")) {
        number.remove_suffix(2);
    } else if (number.ends_with("s")) {
        number.remove_suffix(1);
        unit = 1000;
    }
    const std::optional<double> value = ParseNumber(number);
    if (!value || *value < 0 || *value > 1e9) throw WrongValue("--slow", text, "a time such as 50ms or 1.5s");
    return static_cast<int64_t>(*value * unit);
}

trace::TraceFilter FilterOf(const LogOptions& options) {
    trace::TraceFilter filter;
    filter.errors = options.errors;
    if (!options.slow.empty()) filter.slow = DurationOf(options.slow);
    if (!options.job.empty()) {
        const std::optional<int> number = ParseWhole(options.job);
        if (!number || *number < 1)
            throw WrongValue("--job", options.job, "the number of a job in the log, from 1");
        filter.job = static_cast<uint32_t>(*number);
    }
    return filter;
}

// Returns nothing when the arguments ask for help.
std::optional<LogOptions> ReadLogOptions(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexview", kDescription, "--log FILE [options]", kExamples, "--log --help");
    line.Text("--log", "FILE", "The log, or one of its backups");
    line.Require("--log");
    line.Flag("--errors", "Only errors that no sound job has, and the operations around them");
    line.Text("--slow", "TIME", "Only operations that took at least this long, and those around them");
    line.Text("--job", "N", "Only the job of this number, as the tree counts them");
    line.Flag("--json", "JSON: an array of the outermost operations");
    line.Text("--html", "FILE", "Writes the tree as a page to this file");
    line.Exclude("--html", "--json");
    if (!line.Read(arguments, out)) return std::nullopt;
    LogOptions options;
    options.file = line.Value("--log").value_or("");
    options.html = line.Value("--html").value_or("");
    options.slow = line.Value("--slow").value_or("");
    options.job = line.Value("--job").value_or("");
    options.json = line.Has("--json");
    options.errors = line.Has("--errors");
    return options;
}

trace::ReadLog WritePage(const LogOptions& options, const trace::TraceFilter& filter) {
    const std::filesystem::path log = PathFromUtf8(options.file);
    const NamedFile page{"--html", PathFromUtf8(options.html)};
    const NamedFile input{"the log", log};
    RefuseSharedFiles({&page, 1}, {&input, 1});
    const std::unique_ptr<std::istream> stream = OpenFile(log);
    OutputFile output(page.path);
    const auto writer =
        trace::MakeHtmlWriter([&](std::string_view text) { output.Write(text); }, options.file);
    const trace::ReadLog read = trace::ReadTrace(*stream, filter, *writer);
    output.CheckWrites();
    output.Complete();
    return read;
}

// Throws if there was nothing of what was asked for.
void RequireContent(const LogOptions& options, const trace::TraceFilter& filter,
                    const trace::TraceCounts& counts) {
    if (counts.lines > 0 && counts.logLines == 0) {
        throw std::runtime_error(options.file + " has no line of the driver's log");
    }
    if (filter.job && *filter.job > counts.jobs) {
        throw std::runtime_error("--job " + options.job + ": " + options.file + " has " +
                                 std::to_string(counts.jobs) + (counts.jobs == 1 ? " job" : " jobs"));
    }
}

}  // namespace

bool IsLogCommand(const std::vector<std::string>& arguments) {
    return HasOption(arguments, "--log");
}

int RunLogCommand(const std::vector<std::string>& arguments, std::ostream& out) {
    const std::optional<LogOptions> options = ReadLogOptions(arguments, out);
    if (!options) return 0;
    const trace::TraceFilter filter = FilterOf(*options);
    trace::ReadLog read;
    if (!options->html.empty()) {
        read = WritePage(*options, filter);
        out << options->html << ": " << trace::CountsText(read.counts) << "\n";
    } else {
        const std::unique_ptr<std::istream> stream = OpenFile(PathFromUtf8(options->file));
        const auto put = [&](std::string_view text) { out << text; };
        const auto writer = options->json ? trace::MakeJsonWriter(put) : trace::MakeTextWriter(put);
        read = trace::ReadTrace(*stream, filter, *writer);
    }
    RequireContent(*options, filter, read.counts);
    return options->errors && read.errors > 0 ? 1 : 0;
}

}  // namespace orvex::tools::view
