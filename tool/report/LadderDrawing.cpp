#include "tool/report/LadderDrawing.h"

#include <algorithm>
#include <cmath>

#include "tool/Describe.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

constexpr double plotLeft = 200.0;
constexpr double plotRight = 735.0;
constexpr double ratesRight = 868.0;
constexpr double ratiosRight = drawingWidth - 4;
constexpr double rowHeight = 24.0;
constexpr double familyHeight = 26.0;
constexpr double headHeight = 48.0;

/// Of powers of ten, doubled and times five: those that bound a range, and those in it.
class RateAxis {
  public:
    explicit RateAxis(const std::vector<Rung>& rungs) {
        for (const Rung& rung : rungs) {
            take(rung.peak);
            take(rung.average);
            if (rung.measured) take(rung.measured->peak);
            if (rung.measured) take(rung.measured->average);
        }
        if (isEmpty()) return;
        const auto lowest = static_cast<int>(std::floor(std::log10(least_)));
        const auto highest = static_cast<int>(std::ceil(std::log10(most_)));
        for (int exponent = lowest; exponent <= highest; ++exponent) {
            for (const double times : {1.0, 2.0, 5.0})
                steps_.push_back(std::pow(10.0, exponent) * times);
        }
        while (steps_.size() > 2 && steps_[1] <= least_)
            steps_.erase(steps_.begin());
        while (steps_.size() > 2 && steps_[steps_.size() - 2] >= most_)
            steps_.pop_back();
    }

    [[nodiscard]] bool isEmpty() const { return most_ <= 0.0; }

    [[nodiscard]] double at(double rate) const {
        const double part = std::log(rate / steps_.front()) / std::log(steps_.back() / steps_.front());
        return plotLeft + std::clamp(part, 0.0, 1.0) * (plotRight - plotLeft);
    }

    /// Those whose names have room: all, or the powers of ten, or some of these.
    [[nodiscard]] std::vector<double> ticks() const {
        constexpr std::size_t most = 10;
        const std::size_t step = steps_.size() <= most ? 1 : 3 * ((steps_.size() - 1) / (3 * most) + 1);
        std::vector<double> ticks;
        for (std::size_t place = 0; place < steps_.size(); place += step)
            ticks.push_back(steps_[place]);
        return ticks;
    }

  private:
    void take(std::optional<double> rate) {
        if (!rate || !(*rate >= 1.0)) return;
        least_ = most_ <= 0.0 ? *rate : std::min(least_, *rate);
        most_ = std::max(most_, *rate);
    }

    double least_ = 0.0;
    double most_ = 0.0;
    std::vector<double> steps_;
};

class LadderDrawer {
  public:
    LadderDrawer(const Ladder& ladder, const RateAxis& axis) : ladder_(ladder), axis_(axis) {
        count_ = std::min(ladder.rungs.size(), mostRungs);
        height_ = headHeight;
        for (std::size_t place = 0; place < count_; ++place)
            height_ += rowHeight + (beginsFamily(place) ? familyHeight : 0.0);
        height_ += ladder.rungs.size() > count_ ? rowHeight : 6.0;
    }

    Drawing draw() {
        drawHead();
        double top = headHeight;
        for (std::size_t place = 0; place < count_; ++place) {
            if (beginsFamily(place)) {
                top += familyHeight;
                drawText(out_, "name", 0, top - 8, cut(ladder_.rungs[place].family, 60));
            }
            drawRung(place, top);
            top += rowHeight;
        }
        const std::size_t left = ladder_.rungs.size() - count_;
        if (left > 0) drawText(out_, "small", 0, top + 16, numberOf(left, "variant") + " more not drawn");
        return {{}, {}, height_, out_};
    }

  private:
    [[nodiscard]] bool beginsFamily(std::size_t place) const {
        return place == 0 || ladder_.rungs[place - 1].family != ladder_.rungs[place].family;
    }

    [[nodiscard]] bool isMeasured() const {
        return std::any_of(ladder_.rungs.begin(), ladder_.rungs.end(),
                           [](const Rung& rung) { return rung.measured.has_value(); });
    }

    void drawHead() {
        std::vector<LegendEntry> legend = {{Sign::Circle, "average", "AVERAGE-BANDWIDTH"},
                                           {Sign::Square, "peak", "BANDWIDTH"}};
        if (isMeasured()) {
            legend.push_back({Sign::TriangleUp, "measured", "measured average"});
            legend.push_back({Sign::TriangleDown, "measured", "measured peak"});
        }
        drawLegend(out_, 12, legend);
        drawText(out_, "small end", ratesRight, 40, "BANDWIDTH");
        drawText(out_, "small end", ratiosRight, 40, "times next");
        for (const double tick : axis_.ticks()) {
            const double x = axis_.at(tick);
            drawText(out_, "small middle", x, 40, rateText(tick));
            drawLine(out_, "grid", x, headHeight - 2, x, height_);
        }
    }

    void drawRung(std::size_t place, double top) {
        const Rung& rung = ladder_.rungs[place];
        const double middle = top + rowHeight / 2;
        drawText(out_, "label", 8, middle + 4, labelOf(rung));
        // What was measured stands below what is declared.
        const double declared = rung.measured ? middle - 5 : middle;
        if (rung.peak && rung.average)
            drawLine(out_, "range", axis_.at(*rung.average), declared, axis_.at(*rung.peak), declared);
        drawSign(Sign::Circle, "average", rung.average, declared, "AVERAGE-BANDWIDTH ");
        drawSign(Sign::Square, "peak", rung.peak, declared, "BANDWIDTH ");
        if (rung.measured) {
            drawSign(Sign::TriangleUp, "measured", rung.measured->average, middle + 6, "measured average ");
            drawSign(Sign::TriangleDown, "measured", rung.measured->peak, middle + 6, "measured peak ");
        }
        drawText(out_, "end", ratesRight, middle + 4, rung.peak ? rateText(*rung.peak) : "missing");
        const auto ratio = ratioToNext(ladder_.rungs, place);
        if (ratio && place + 1 < count_)
            drawText(out_, "small end", ratiosRight, top + rowHeight + 4, ratioText(*ratio));
    }

    static std::string ratioText(double ratio) { return "\xC3\x97" + decimal(std::round(ratio * 100) / 100); }

    void drawSign(Sign sign, std::string_view style, std::optional<double> rate, double y,
                  const std::string& name) {
        if (rate) drawPath(out_, style, signPath(sign, axis_.at(*rate), y), name + rateText(*rate));
    }

    const Ladder& ladder_;
    const RateAxis& axis_;
    std::size_t count_ = 0;
    double height_ = 0.0;
    Markup out_;
};

}  // namespace

std::optional<Drawing> drawLadder(const Ladder& ladder, const std::string& name) {
    const RateAxis axis(ladder.rungs);
    if (axis.isEmpty()) return std::nullopt;
    Drawing drawing = LadderDrawer(ladder, axis).draw();
    drawing.title = "Ladder of " + cut(name, mostTextBytes);
    drawing.description = numberOf(ladder.rungs.size(), "variant") +
                          " by codecs, each with its average and peak bit rates on a logarithmic axis. The "
                          "table of variants has the same figures.";
    return drawing;
}

}  // namespace tool::report
