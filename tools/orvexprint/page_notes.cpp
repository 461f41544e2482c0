#include "tools/orvexprint/page_notes.h"

#include <algorithm>

namespace orvex::tools::print {

void PageNotes::Add(size_t page, const std::string& text) {
    if (text.empty()) return;
    const auto same =
        std::find_if(notes_.begin(), notes_.end(), [&](const Note& note) { return note.text == text; });
    if (same == notes_.end()) {
        notes_.push_back({page, text});
    } else {
        ++same->others;
    }
}

void PageNotes::Write(std::ostream& out) const {
    for (const Note& note : notes_) {
        std::string line = "orvexprint: page " + std::to_string(note.page) + " " + note.text;
        if (note.others > 0)
            line += " (like " + std::to_string(note.others) + (note.others == 1 ? " other)" : " others)");
        out << line + "\n";
    }
}

}  // namespace orvex::tools::print
