#include "tools/orvexview/page_pictures.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "tools/orvexview/together.h"

namespace orvex::tools::view {

namespace {

constexpr uint32_t kRowsAtATime = 64;
constexpr uint64_t kSmallPage = 65536;  // pixels of a page that is drawn before a thread has started

// Consecutive rows of a page.
struct RowBatch {
    uint32_t first = 0;
    uint32_t count = 0;
    std::vector<uint32_t> inkValues;
    std::array<bool, kRowsAtATime> repeats;  // whether each row is like the one above

    std::span<const uint32_t> Row(uint32_t index, uint32_t width) const {
        return {inkValues.data() + size_t{index} * width, width};
    }
};

// One picture of an area of the block, made smaller.
class AreaPicture {
  public:
    AreaPicture(const BlockArea& area, uint32_t channels, uint32_t scale)
        : area_(area), channels_(channels), reducer_(area.width, area.rows, channels, scale) {}

    // Takes the samples of a whole row.
    void TakeRow(uint32_t row, const std::vector<uint8_t>& samples) {
        if (row < area_.top || row >= area_.top + area_.rows) return;
        const std::span<uint8_t> line = reducer_.Line();
        std::copy_n(samples.data() + size_t{area_.left} * channels_, line.size(), line.data());
        reducer_.TakeLine();
    }

    Picture Finish() { return reducer_.Finish(); }

  private:
    BlockArea area_;
    uint32_t channels_;
    Reducer reducer_;
};

// The colors of the rows, in the composite and in the block.
class ColorPass {
  public:
    ColorPass(const InkModel& model, const PrintedPage& page, const Drawing& drawing)
        : model_(model),
          used_(drawing.blockScale > 0 ? WholeBlock(page) : drawing.area),
          samples_(size_t{page.rowWidth} * 3) {
        if (drawing.composite) composite_ = std::make_unique<AreaPicture>(drawing.area, 3, drawing.scale);
        if (drawing.blockScale > 0) {
            block_ = std::make_unique<AreaPicture>(WholeBlock(page), 3, drawing.blockScale);
        }
    }

    bool IsNeeded() const { return composite_ || block_; }

    void TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) {
        if (row < used_.top || row >= used_.top + used_.rows) return;
        if (!repeats || row == used_.top) Convert(inkValues);
        if (composite_) composite_->TakeRow(row, samples_);
        if (block_) block_->TakeRow(row, samples_);
    }

    void Finish(PagePictures& pictures) {
        if (composite_) pictures.composite = composite_->Finish();
        if (block_) pictures.block = block_->Finish();
    }

  private:
    void Convert(std::span<const uint32_t> inkValues) {
        // Neighbors usually have the same ink, and the model costs far more than a comparison.
        uint32_t last = 0;
        Rgb color = kPaperWhite;
        uint8_t* out = &samples_[size_t{used_.left} * 3];
        for (const uint32_t value : inkValues.subspan(used_.left, used_.width)) {
            if (value != last) color = model_.OnPaper(last = value);
            StoreColor(out, color);
            out += 3;
        }
    }

    const InkModel& model_;
    BlockArea used_;
    std::vector<uint8_t> samples_;
    std::unique_ptr<AreaPicture> composite_;
    std::unique_ptr<AreaPicture> block_;
};

// The amounts of one ink, in its picture and in its mean.
class InkPass {
  public:
    InkPass(const InkModel& model, const PrintedPage& page, const BlockArea& image, const Drawing& drawing,
            int ink)
        : ink_(ink), image_(image), samples_(page.rowWidth) {
        for (uint32_t amount = 0; amount < gray_.size(); ++amount) {
            gray_[amount] = model.Gray(amount << (8 * ink), ink);
        }
        if (drawing.inks) picture_ = std::make_unique<AreaPicture>(drawing.area, 1, drawing.scale);
    }

    void TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) {
        if (!repeats) Convert(inkValues);
        if (picture_) picture_->TakeRow(row, samples_);
        if (row >= image_.top && row < image_.top + image_.rows) sum_ += rowSum_;
    }

    void Finish(PagePictures& pictures) {
        if (picture_) pictures.inks[ink_] = picture_->Finish();
        const auto white = static_cast<double>(uint64_t{image_.width} * image_.rows * 255);
        pictures.means[ink_] = (white - static_cast<double>(sum_)) / white;
    }

  private:
    void Convert(std::span<const uint32_t> inkValues) {
        for (size_t i = 0; i < inkValues.size(); ++i) samples_[i] = gray_[InkAmount(inkValues[i], ink_)];
        rowSum_ = 0;
        for (uint32_t i = 0; i < image_.width; ++i) rowSum_ += samples_[image_.left + i];
    }

    int ink_;
    BlockArea image_;
    std::array<uint8_t, 256> gray_;
    std::vector<uint8_t> samples_;
    std::unique_ptr<AreaPicture> picture_;
    uint32_t rowSum_ = 0;  // of the image's part of the row
    uint64_t sum_ = 0;
};

template <typename Pass>
std::function<void()> TakeBatch(Pass& pass, const RowBatch& batch, uint32_t rowWidth) {
    return [&pass, &batch, rowWidth] {
        for (uint32_t i = 0; i < batch.count; ++i) {
            pass.TakeRow(batch.first + i, batch.Row(i, rowWidth), batch.repeats[i]);
        }
    };
}

void Turn(PagePictures& pictures) {
    std::vector<std::function<void()>> tasks;
    tasks.push_back([&] { pictures.composite = TurnClockwise(pictures.composite); });
    for (Picture& ink : pictures.inks) tasks.push_back([&] { ink = TurnClockwise(ink); });
    RunTogether(tasks);
}

}  // namespace

BlockArea ImageArea(const PagePlacement& placement) {
    return {placement.imageLeft, placement.imageTop, placement.imageWidth, placement.imageRows};
}

BlockArea WholeBlock(const PrintedPage& page) {
    return {0, 0, page.rowWidth, page.rows};
}

PagePictures DrawPage(const InkModel& model, const PrintedPage& page, const PagePlacement& placement,
                      const Drawing& drawing) {
    ColorPass colors(model, page, drawing);
    std::vector<InkPass> inks;
    for (int ink = 0; ink < kInks; ++ink) inks.emplace_back(model, page, ImageArea(placement), drawing, ink);

    RowReader reader(page);
    RowBatch batches[2];
    const auto readBatch = [&](RowBatch& batch, uint32_t first) {
        batch.first = first;
        batch.inkValues.clear();
        for (batch.count = 0; batch.count < kRowsAtATime; ++batch.count) {
            const std::span<const uint32_t> row = reader.Next();
            if (row.empty()) return;
            batch.repeats[batch.count] =
                batch.count > 0 && std::equal(row.begin(), row.end(), batch.inkValues.end() - page.rowWidth);
            batch.inkValues.insert(batch.inkValues.end(), row.begin(), row.end());
        }
    };
    readBatch(batches[0], 0);
    // The next rows are read while these are drawn.
    for (RowBatch *now = &batches[0], *next = &batches[1]; now->count > 0; std::swap(now, next)) {
        std::vector<std::function<void()>> tasks;
        tasks.push_back([&] { readBatch(*next, now->first + now->count); });
        if (colors.IsNeeded()) tasks.push_back(TakeBatch(colors, *now, page.rowWidth));
        for (InkPass& ink : inks) tasks.push_back(TakeBatch(ink, *now, page.rowWidth));
        for (RowUser* user : drawing.users) tasks.push_back(TakeBatch(*user, *now, page.rowWidth));
        if (uint64_t{page.rowWidth} * page.rows < kSmallPage) {
            for (const std::function<void()>& task : tasks) task();
        } else {
            RunTogether(tasks);
        }
    }
    PagePictures pictures;
    colors.Finish(pictures);
    for (InkPass& ink : inks) ink.Finish(pictures);
    if (drawing.turned) Turn(pictures);
    return pictures;
}

std::vector<BlockArea> Bands(const Drawing& drawing, size_t mostBytes) {
    const BlockArea& area = drawing.area;
    if (!drawing.composite && !drawing.inks) return {area};
    const uint32_t across = (drawing.turned ? area.rows : area.width) / drawing.scale + 1;
    const size_t lineBytes = size_t{across} * (3 + (drawing.inks ? kInks : 0));
    const size_t lines = std::max<size_t>(mostBytes / lineBytes, 1);
    const uint32_t whole = drawing.turned ? area.width : area.rows;
    const auto step = static_cast<uint32_t>(std::min<uint64_t>(uint64_t{lines} * drawing.scale, whole));
    std::vector<BlockArea> bands;
    for (uint32_t at = 0; at < whole; at += step) {
        const uint32_t size = std::min(step, whole - at);
        bands.push_back(drawing.turned ? BlockArea{area.left + at, area.top, size, area.rows}
                                       : BlockArea{area.left, area.top + at, area.width, size});
    }
    return bands;
}

}  // namespace orvex::tools::view
