#include "tools/common/html_text.h"

#include "tools/common/printable_text.h"

namespace orvex::tools {

std::string HtmlText(std::string_view text) {
    std::string html;
    for (const char letter : PrintableText(text, text.size())) {
        switch (letter) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += letter;
        }
    }
    return html;
}

}  // namespace orvex::tools
