// The texts of exceptions.
#pragma once

#include <exception>
#include <string>

namespace orvex::tools {

// Returns the text of the `Error` that the action throws; empty if it throws nothing.
template <typename Error = std::exception, typename Action>
std::string ThrownText(Action&& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace orvex::tools
