#include "viewer/ink_model.h"

#include <algorithm>

namespace viewer {

InkModel::InkModel(uint32_t dpi) {
    const float fullInk = dpi == 600 ? 127.5f : 255.0f;
    for (size_t amount = 0; amount < transmission_.size(); ++amount) {
        transmission_[amount] = 1.0f - std::min(static_cast<float>(amount) / fullInk, 1.0f);
    }
}

Rgb InkModel::OnPaper(uint32_t inkValue, Rgb paper) const {
    if (inkValue == 0) return paper;
    const float black = Transmission(InkAmount(inkValue, kBlack));
    return {Level(paper.red, Transmission(InkAmount(inkValue, kCyan)) * black),
            Level(paper.green, Transmission(InkAmount(inkValue, kMagenta)) * black),
            Level(paper.blue, Transmission(InkAmount(inkValue, kYellow)) * black)};
}

}  // namespace viewer
