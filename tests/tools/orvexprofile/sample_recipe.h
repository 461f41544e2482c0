// A valid recipe for tests to change.
#pragma once

#include <nlohmann/json.hpp>

namespace orvex::tools::profile {

inline nlohmann::json SampleRecipe() {
    return nlohmann::json::parse(R"({
        "name": "Sample",
        "inks": {
            "K": { "density": [1.5, 1.5, 1.5], "dot_gain": 18 },
            "C": { "density": [1.35, 0.42, 0.18], "dot_gain": 20 },
            "M": { "density": [0.16, 1.3, 0.52], "dot_gain": 20 },
            "Y": { "density": [0.02, 0.1, 1.2], "dot_gain": 18 }
        },
        "black_density": 1.7,
        "chroma_density": 1.18,
        "black_start": 0.25,
        "highlight_ease": 7
    })");
}

}  // namespace orvex::tools::profile
