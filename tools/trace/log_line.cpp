#include "tools/trace/log_line.h"

#include <charconv>
#include <chrono>

namespace orvex::tools::trace {

namespace {

// Takes parts off the front of a text; once one did not fit, nothing fits any more.
class Parts {
  public:
    explicit Parts(std::string_view text) : rest_(text) {}

    void Text(std::string_view expected) {
        if (!rest_.starts_with(expected)) return Fail();
        rest_.remove_prefix(expected.size());
    }

    // Takes a number of digits alone; at most `digits` of them.
    uint32_t Number(size_t digits) {
        uint32_t number = 0;
        const auto [end, error] =
            std::from_chars(rest_.data(), rest_.data() + std::min(digits, rest_.size()), number);
        if (error != std::errc()) {
            Fail();
            return 0;
        }
        rest_.remove_prefix(static_cast<size_t>(end - rest_.data()));
        return number;
    }

    bool Fit() const { return fit_; }
    std::string_view Rest() const { return rest_; }

  private:
    void Fail() {
        fit_ = false;
        rest_ = {};
    }

    std::string_view rest_;
    bool fit_ = true;
};

Level TakeLevel(std::string_view& message) {
    struct Tag {
        std::string_view text;
        Level level;
    };
    constexpr Tag kTags[] = {
        {"[Error] ", Level::kError}, {"[Info]  ", Level::kInfo}, {"[Trace] ", Level::kTrace}};
    for (const Tag& tag : kTags) {
        if (!message.starts_with(tag.text)) continue;
        message.remove_prefix(tag.text.size());
        return tag.level;
    }
    return Level::kNone;
}

// Returns a number with leading zeros.
std::string Padded(int64_t number, size_t digits) {
    const std::string text = std::to_string(number);
    return std::string(digits > text.size() ? digits - text.size() : 0, '0') + text;
}

std::chrono::sys_time<std::chrono::milliseconds> TimePoint(int64_t time) {
    return std::chrono::sys_time<std::chrono::milliseconds>(std::chrono::milliseconds(time));
}

}  // namespace

std::optional<LogLine> ParseLogLine(std::string_view text) {
    Parts parts(text);
    const auto number = [&parts](size_t digits, std::string_view separator) {
        const uint32_t value = parts.Number(digits);
        parts.Text(separator);
        return value;
    };
    parts.Text("[");
    const std::chrono::year year(static_cast<int>(number(4, "-")));
    const std::chrono::month month(number(2, "-"));
    const std::chrono::day day(number(2, " "));
    const std::chrono::hours hours(number(2, ":"));
    const std::chrono::minutes minutes(number(2, ":"));
    const std::chrono::seconds seconds(number(2, "."));
    const std::chrono::milliseconds milliseconds(number(3, "] [TID: "));
    LogLine line;
    line.thread = number(10, "] ");
    const std::chrono::year_month_day date(year, month, day);
    if (!parts.Fit() || !date.ok()) return std::nullopt;
    line.time =
        (std::chrono::sys_days(date) + hours + minutes + seconds + milliseconds).time_since_epoch().count();
    line.message = parts.Rest();
    line.level = TakeLevel(line.message);
    return line;
}

std::string DateText(int64_t time) {
    const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(TimePoint(time)));
    return Padded(static_cast<int>(date.year()), 4) + "-" + Padded(static_cast<unsigned>(date.month()), 2) +
           "-" + Padded(static_cast<unsigned>(date.day()), 2);
}

std::string ClockText(int64_t time) {
    const auto point = TimePoint(time);
    const std::chrono::hh_mm_ss clock(point - std::chrono::floor<std::chrono::days>(point));
    return Padded(clock.hours().count(), 2) + ":" + Padded(clock.minutes().count(), 2) + ":" +
           Padded(clock.seconds().count(), 2) + "." + Padded(clock.subseconds().count(), 3);
}

std::string_view HarmlessReason(std::string_view message) {
    struct Harmless {
        std::string_view beginning;
        std::string_view reason;
    };
    constexpr Harmless kHarmless[] = {
        {"GetQRVProfileName [", "the catalogue logs every profile that it names"},
        {"QRV_GetProfileFieldW [", "the catalogue logs every name that it gives"},
        {"ca ", "the values of the color adjustment"},
        {"Add ", "the import logs every label that it adds"},
        {"Could not find label list in registry: 0x2", "the printer has no labels of its own yet"},
    };
    for (const Harmless& harmless : kHarmless) {
        if (message.starts_with(harmless.beginning)) return harmless.reason;
    }
    return {};
}

}  // namespace orvex::tools::trace
