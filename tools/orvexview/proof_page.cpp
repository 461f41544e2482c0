#include "tools/orvexview/proof_page.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "driver/render/base64.h"
#include "tools/common/html_text.h"
#include "tools/common/number_text.h"
#include "tools/common/product_version.h"
#include "tools/orvexview/layout_picture.h"
#include "tools/orvexview/proof_script.h"
#include "tools/orvexview/report.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kInkNames[kInks] = {"black", "cyan", "magenta", "yellow"};
constexpr size_t kMostWarnings = 20;
constexpr size_t kOpenRows = 20;  // of a table that is not folded

std::string Cell(std::string_view html, bool number = false) {
    return (number ? "<td class=\"number\">" : "<td>") + std::string(html) + "</td>";
}

std::string Percent(double share) {
    return DecimalText(100 * share, 1) + " %";
}

std::string InkControls() {
    std::string html;
    for (const std::string_view name : kInkNames) {
        html += "<label><input type=\"checkbox\" checked> " + std::string(name) + "</label>\n";
    }
    return html;
}

std::string ShowControl() {
    std::string html =
        "<label>Show <select id=\"show\"><option value=\"all\">the print</option>"
        "<option value=\"some\">chosen inks</option>";
    for (int ink = 0; ink < kInks; ++ink) {
        html += "<option value=\"" + std::to_string(ink) + "\">" + kInkNames[ink] + " alone</option>";
    }
    return html + "<option value=\"heat\">total ink</option></select></label>\n";
}

std::string Settings(const PrintFile& file) {
    std::string html =
        "<section><h2>Settings</h2><p class=\"quiet\">Those that differ from the driver's defaults are bold."
        "</p><div class=\"wide\"><table>\n";
    for (const HeaderVariable& variable : file.header.variables) {
        html += IsUnusual(variable.name, variable.value) ? "<tr class=\"unusual\">" : "<tr>";
        html += Cell(HtmlText(variable.name)) + Cell(HtmlText(variable.value)) +
                Cell(HtmlText(MeaningOf(variable.name, variable.value))) + "</tr>\n";
    }
    return html + "</table></div></section>\n";
}

std::string InkRow(const ProofSheet& sheet) {
    std::string html = "<tr>" + Cell(PagesText(sheet.pages));
    double total = 0;
    for (const double mean : sheet.means) {
        html += Cell(Percent(mean), true);
        total += mean;
    }
    return html + Cell(Percent(total), true) + Cell(Percent(sheet.facts.mostInk), true) + "</tr>\n";
}

std::string InkTable(std::span<const ProofSheet> sheets) {
    std::string html = "<section><h2>Ink</h2><details";
    html += sheets.size() <= kOpenRows ? " open>" : ">";
    html +=
        "<summary>Mean of each ink over the label, and the most that a pixel gets</summary>"
        "<div class=\"wide\"><table><tr><th></th>";
    for (const char* name : kInkNames) html += "<th class=\"number\">" + std::string(name) + "</th>";
    html += "<th class=\"number\">all</th><th class=\"number\">most</th></tr>\n";
    for (const ProofSheet& sheet : sheets) html += InkRow(sheet);
    return html +
           "</table></div></details><p class=\"quiet\">orvexview --ink counts milliliters and cost.</p>"
           "</section>\n";
}

// Texts with the pages that they are about.
using PageGroups = std::map<std::string, std::vector<uint32_t>>;
using PageGroup = std::pair<std::string, std::vector<uint32_t>>;

void AddPages(PageGroups& groups, std::string text, const ProofSheet& sheet) {
    std::vector<uint32_t>& pages = groups[std::move(text)];
    pages.insert(pages.end(), sheet.pages.begin(), sheet.pages.end());
}

// Returns the groups in the order of their first pages.
std::vector<PageGroup> Ordered(const PageGroups& groups) {
    std::vector<PageGroup> ordered(groups.begin(), groups.end());
    for (PageGroup& group : ordered) std::sort(group.second.begin(), group.second.end());
    std::stable_sort(ordered.begin(), ordered.end(), [](const PageGroup& one, const PageGroup& other) {
        return one.second.front() < other.second.front();
    });
    return ordered;
}

std::string PlaceSection(const PrintFile& file, std::span<const ProofSheet> sheets) {
    PageGroups places;  // most jobs have one geometry for all pages
    for (const ProofSheet& sheet : sheets) {
        std::string html = PlaceDrawing(file, *sheet.page, sheet.placement) + "<ul>";
        for (const std::string& line : LayoutLegend(file, sheet.placement)) {
            html += "<li>" + HtmlText(line) + "</li>";
        }
        AddPages(places, html + "</ul>", sheet);
    }
    std::string section = "<section><h2>Under the print head</h2>\n";
    for (const auto& [html, pages] : Ordered(places)) {
        section += "<h3>" + PagesText(pages) + "</h3>" + html + "\n";
    }
    return section + "</section>\n";
}

std::string Warnings(std::span<const ProofSheet> sheets, std::string_view problem) {
    PageGroups groups;
    for (const ProofSheet& sheet : sheets) {
        for (const std::string& warning : sheet.warnings) AddPages(groups, HtmlText(warning), sheet);
    }
    std::string items;
    if (!problem.empty()) items += "<li>The file is not sound: " + HtmlText(problem) + "</li>\n";
    size_t count = 0;
    for (const auto& [warning, pages] : Ordered(groups)) {
        if (++count <= kMostWarnings) items += "<li>" + PagesText(pages) + ": " + warning + "</li>\n";
    }
    if (count > kMostWarnings) {
        items += "<li>" + std::to_string(count - kMostWarnings) + " more of these</li>\n";
    }
    const std::string list = items.empty() ? "<p>None.</p>" : "<ul>\n" + items + "</ul>";
    return "<section id=\"warnings\"><h2>Warnings</h2>" + list +
           "<p class=\"quiet\">Of art that was resampled, a print file shows only what was enlarged by a "
           "whole "
           "number; orvexprint tells the rest when it prints.</p></section>\n";
}

// Returns the tables from which the browser computes colors: the light that each gray of an ink's picture
// reflects, and the light from which on a sample is shown.
nlohmann::json ModelTables() {
    const InkModel model(300);  // full ink is 255, as in the pictures
    const std::vector<uint8_t>& samples = model.SamplesByLight();
    const auto steps = static_cast<uint32_t>(samples.size() - 1);
    nlohmann::json json = {{"steps", steps}};
    for (int ink = 0; ink < kInks; ++ink) {
        std::vector<uint32_t> table;
        for (uint32_t gray = 0; gray <= 255; ++gray) {
            const InkModel::Light& light = model.LightOf(ink, 255 - gray);
            for (const float part : {light.red, light.green, light.blue}) {
                table.push_back(static_cast<uint32_t>(part * static_cast<float>(steps) + 0.5f));
            }
        }
        json["light"].push_back(table);
    }
    for (uint32_t sample = 0; sample <= 255; ++sample) {
        json["shownFrom"].push_back(std::lower_bound(samples.begin(), samples.end(), sample) -
                                    samples.begin());
    }
    return json;
}

std::string JobData(size_t pageCount, std::span<const ProofSheet> sheets, double limit) {
    nlohmann::json json = ModelTables();
    json["limit"] = limit;
    std::vector<size_t> sheetOfPage(pageCount);
    for (size_t sheet = 0; sheet < sheets.size(); ++sheet) {
        for (const uint32_t page : sheets[sheet].pages) sheetOfPage[page - 1] = sheet;
        json["sheets"].push_back(sheets[sheet].hasPicture ? nlohmann::json(sheet) : nlohmann::json());
        json["fromFirst"].push_back(sheets[sheet].fromFirst);
    }
    json["pages"] = sheetOfPage;
    return json.dump();
}

}  // namespace

std::string PagesText(std::span<const uint32_t> numbers) {
    std::string text;
    for (size_t i = 0; i < numbers.size();) {
        size_t end = i + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) ++end;
        text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
        if (end - i > 1) text += (end - i > 2 ? " to " : ", ") + std::to_string(numbers[end - 1]);
        i = end;
    }
    return (numbers.size() == 1 ? "page " : "pages ") + text;
}

std::string ProofBeginning(const PrintFile& file, std::string_view name) {
    const std::string* jobName = file.header.Find("JOB NAME");
    const std::string title = HtmlText(jobName != nullptr && !jobName->empty() ? *jobName : name);
    const std::string pages = std::to_string(file.pages.size());
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           title + "</title>\n<style>" + kProofStyle + "</style></head>\n<body><header><h1>" + title +
           "</h1><p class=\"quiet\">" + HtmlText(name) + ", " + pages +
           (pages == "1" ? " page, " : " pages, ") + std::to_string(file.dpi) + " dpi, shown by orvexview " +
           kProductVersion + "</p></header>\n<main><div class=\"bar\" id=\"inks\">\n" + InkControls() +
           ShowControl() +
           "</div>\n<div class=\"bar\"><span><button id=\"previous\" title=\"Previous page\">&lt;</button> "
           "Page <input id=\"page\" type=\"number\" min=\"1\" max=\"" +
           pages + "\" value=\"1\"> of " + pages +
           " <button id=\"next\" title=\"Next page\">&gt;</button></span>\n"
           "<span><button id=\"farther\" title=\"Smaller\">-</button> <output id=\"zoom\">fit</output> "
           "<button id=\"closer\" title=\"Larger\">+</button> <button id=\"fit\">fit</button></span></div>\n"
           "<div id=\"frame\"><p id=\"note\"></p><canvas id=\"canvas\"></canvas></div>\n";
}

std::string ProofPicture(size_t sheet, std::span<const uint8_t> png) {
    size_t length = 0;
    const HeapArray<char> text = EncodeBase64(png.data(), png.size(), &length);
    if (!text) throw std::bad_alloc();
    return "<script type=\"text/plain\" id=\"picture" + std::to_string(sheet) + "\">" +
           std::string(text.get(), length) + "</script>\n";
}

std::string ProofEnd(const PrintFile& file, std::span<const ProofSheet> sheets, double limit,
                     std::string_view problem) {
    return "<div id=\"scale\" hidden><canvas></canvas><i style=\"left:" + DecimalText(limit / 4, 2) +
           "%\"></i><p><span>0 %</span><span>limit " + DecimalText(limit, 0) +
           " %</span><span>400 %</span></p></div>\n"
           "<nav id=\"pages\"></nav></main>\n" +
           Warnings(sheets, problem) + PlaceSection(file, sheets) + Settings(file) + InkTable(sheets) +
           "<script type=\"application/json\" id=\"job\">" + JobData(file.pages.size(), sheets, limit) +
           "</script>\n<script>" + kProofScript + "</script></body></html>\n";
}

}  // namespace orvex::tools::view
