#include "tools/orvexprint/barcode.h"

#include <cctype>

namespace orvex::tools::print {

namespace {

// A character of nine elements, alternately bar and space; W is wide, n is narrow.
struct Symbol {
    char character;
    const char* elements;
};
constexpr Symbol kSymbols[] = {
    {'0', "nnnWWnWnn"}, {'1', "WnnWnnnnW"}, {'2', "nnWWnnnnW"}, {'3', "WnWWnnnnn"}, {'4', "nnnWWnnnW"},
    {'5', "WnnWWnnnn"}, {'6', "nnWWWnnnn"}, {'7', "nnnWnnWnW"}, {'8', "WnnWnnWnn"}, {'9', "nnWWnnWnn"},
    {'A', "WnnnnWnnW"}, {'B', "nnWnnWnnW"}, {'C', "WnWnnWnnn"}, {'D', "nnnnWWnnW"}, {'E', "WnnnWWnnn"},
    {'F', "nnWnWWnnn"}, {'G', "nnnnnWWnW"}, {'H', "WnnnnWWnn"}, {'I', "nnWnnWWnn"}, {'J', "nnnnWWWnn"},
    {'K', "WnnnnnnWW"}, {'L', "nnWnnnnWW"}, {'M', "WnWnnnnWn"}, {'N', "nnnnWnnWW"}, {'O', "WnnnWnnWn"},
    {'P', "nnWnWnnWn"}, {'Q', "nnnnnnWWW"}, {'R', "WnnnnnWWn"}, {'S', "nnWnnnWWn"}, {'T', "nnnnWnWWn"},
    {'U', "WWnnnnnnW"}, {'V', "nWWnnnnnW"}, {'W', "WWWnnnnnn"}, {'X', "nWnnWnnnW"}, {'Y', "WWnnWnnnn"},
    {'Z', "nWWnWnnnn"}, {'-', "nWnnnnWnW"}, {'.', "WWnnnnWnn"}, {' ', "nWWnnnWnn"}, {'*', "nWnnWnWnn"},
};
constexpr int kWideModules = 3;

const char* Elements(char character) {
    const auto capital = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    const char* dash = nullptr;
    for (const Symbol& symbol : kSymbols) {
        if (symbol.character == capital) return symbol.elements;
        if (symbol.character == '-') dash = symbol.elements;
    }
    return dash;
}

}  // namespace

std::string Code39(std::string_view text) {
    std::string modules;
    std::string framed(1, '*');
    framed += text;
    framed += '*';
    for (const char character : framed) {
        if (!modules.empty()) modules += '0';
        char module = '1';
        for (const char* element = Elements(character); *element != '\0'; ++element) {
            modules.append(*element == 'W' ? kWideModules : 1, module);
            module = module == '1' ? '0' : '1';
        }
    }
    return modules;
}

}  // namespace orvex::tools::print
