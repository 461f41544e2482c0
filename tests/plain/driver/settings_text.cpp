#include "tests/plain/driver/settings_text.h"

#include <cstdlib>

namespace orvex::plain {

namespace {

// Returns the lines with their ends. A line of more than 253 bytes comes in pieces of that size, and the byte
// after each of them is lost. A line's text ends before its first zero byte.
std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t at = 0; at < text.size();) {
        const std::string piece = text.substr(at, 253);
        size_t length = piece.size();
        for (size_t i = 0; i < piece.size(); ++i) {
            if (piece[i] != '\r' && piece[i] != '\n') continue;
            length = piece.compare(i, 2, "\r\n") == 0 ? i + 2 : i + 1;
            break;
        }
        const bool endless = piece.find_first_of("\r\n") == std::string::npos;
        at += endless ? length + 1 : length;
        lines.push_back(piece.substr(0, length));
        lines.back().resize(std::min(lines.back().find('\0'), lines.back().size()));
    }
    return lines;
}

}  // namespace

std::string SettingText(const Installation& installation, const std::string& section, const std::string& key,
                        size_t capacity, Log& log) {
    if (!installation.found || !installation.settings) {
        log.Error("failed to open settings.inf");
        return "";
    }
    std::string found;
    bool inSection = false;
    for (const std::string& line : LinesOf(*installation.settings)) {
        if (line.starts_with("[")) {
            if (inSection) break;
            inSection = line.starts_with(section);
        } else if (inSection && line.starts_with(key) && line.size() > key.size()) {
            const std::string value = line.substr(key.size());
            found = value.substr(0, capacity - 1);
            if (value.size() < capacity - 1) break;
        }
    }
    return found;
}

std::string Trimmed(const std::string& text) {
    constexpr char kWhite[] = " \t\n\v\f\r";
    const size_t first = text.find_first_not_of(kWhite);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kWhite) + 1 - first);
}

int SettingFlag(const Installation& installation, const std::string& section, const std::string& key,
                Log& log) {
    const std::string value = SettingText(installation, section, key, 254, log);
    const int flag = strtoll(value.c_str(), nullptr, 10) > 0 ? 1 : 0;
    log.Info("%s:%s:%d", section.c_str(), key.c_str(), flag);
    return flag;
}

double SettingNumber(const Installation& installation, const std::string& section, const std::string& key,
                     double absent, Log& log) {
    const std::string value = SettingText(installation, section, key, 254, log);
    return value.empty() ? absent : atof(value.c_str());
}

}  // namespace orvex::plain
