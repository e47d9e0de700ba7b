#include "plot/chart.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace program {
namespace {

constexpr double kWidth = 720, kHeight = 440;
constexpr double kLeft = 90, kRight = 20, kTop = 46, kBottom = 62;
constexpr double kLetter = 6.6;  // the width of one, about
constexpr const char* kColours[] = {"#1f5fa8", "#c4452d", "#3a8a4d", "#8a5aa8"};

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '<')
            out += "&lt;";
        else if (c == '&')
            out += "&amp;";
        else if (static_cast<unsigned char>(c) >= 0x20)
            out += c;
    }
    return out;
}

std::string head(double width, double height) {
    return fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
        "viewBox=\"0 0 {0} {1}\" font-family=\"sans-serif\" font-size=\"12\">\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n",
        width, height);
}

std::string text_at(double x, double y, const std::string& text, const char* extra) {
    return fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" {}>{}</text>\n", x, y, extra,
                       escaped(text));
}

// From values to places of the picture.
class Axis {
public:
    explicit Axis(bool logarithmic) : logarithmic_(logarithmic) {}

    bool can_show(double value) const {
        return std::isfinite(value) && (!logarithmic_ || value > 0);
    }
    void include(double value) {
        low_ = std::min(low_, scaled(value));
        high_ = std::max(high_, scaled(value));
    }
    // The ends at round steps, about `parts` of them between.
    void settle(int parts) {
        if (!(low_ <= high_)) low_ = 0, high_ = 1;
        if (low_ == high_) {
            const double margin = low_ == 0 ? 1 : std::fabs(low_) * 0.5;
            low_ -= margin, high_ += margin;
        }
        const double rough = (high_ - low_) / parts;
        const double power = std::pow(10, std::floor(std::log10(rough)));
        step_ = power;
        for (const double times : {1.0, 2.0, 5.0, 10.0}) {
            step_ = times * power;
            if (step_ >= rough) break;
        }
        if (logarithmic_) step_ = std::max(1.0, std::ceil(step_));
        low_ = std::floor(low_ / step_) * step_;
        high_ = std::ceil(high_ / step_) * step_;
    }
    void widen_to(double span) {
        const double more = (span - (high_ - low_)) / 2;
        if (more > 0) low_ -= more, high_ += more;
    }
    double span() const { return high_ - low_; }
    double share(double value) const { return (scaled(value) - low_) / (high_ - low_); }

    template <class Visit>  // visit(share of the axis, label)
    void for_each_mark(Visit visit) const {
        for (int k = 0; k <= 40; ++k) {
            const double at = std::ceil(low_ / step_) * step_ + k * step_;
            if (at > high_ + step_ * 1e-9) break;
            const double shown = std::fabs(at) < step_ * 1e-9 ? 0 : at;
            visit((at - low_) / (high_ - low_),
                  logarithmic_ ? power_of_ten(shown) : fmt::format("{:.6g}", shown));
        }
    }

private:
    static std::string power_of_ten(double exponent) {
        return exponent >= 0 && exponent <= 5 ? fmt::format("{:.0f}", std::pow(10, exponent))
                                              : fmt::format("1e{:.0f}", exponent);
    }
    double scaled(double value) const { return logarithmic_ ? std::log10(value) : value; }

    bool logarithmic_;
    double low_ = std::numeric_limits<double>::infinity();
    double high_ = -std::numeric_limits<double>::infinity();
    double step_ = 1;
};

}  // namespace

std::string svg_of(const Chart& chart) {
    Axis across(chart.logarithmic_x), up(chart.logarithmic_y);
    long long left_out = 0;
    const auto shown = [&](const Series& series, std::size_t i) {
        return across.can_show(series.x[i]) && up.can_show(series.y[i]);
    };
    for (const Series& series : chart.series) {
        for (std::size_t i = 0; i < series.x.size(); ++i) {
            if (!shown(series, i)) {
                ++left_out;
                continue;
            }
            across.include(series.x[i]);
            up.include(series.y[i]);
        }
    }
    const double width = kWidth - kLeft - kRight, height = kHeight - kTop - kBottom;
    across.settle(8);
    up.settle(6);
    if (chart.same_scale) {
        across.widen_to(up.span() / height * width);
        up.widen_to(across.span() / width * height);
    }

    std::string svg = head(kWidth, kHeight);
    svg += text_at(kLeft, 26, chart.title, "font-size=\"15\" font-weight=\"bold\"");
    up.for_each_mark([&](double share, const std::string& label) {
        const double y = kTop + (1 - share) * height;
        svg += fmt::format("<path d=\"M{:.1f} {:.1f}H{:.1f}\" stroke=\"#ddd\"/>\n", kLeft, y,
                           kLeft + width);
        svg += text_at(kLeft - 8, y + 4, label, "text-anchor=\"end\"");
    });
    across.for_each_mark([&](double share, const std::string& label) {
        const double x = kLeft + share * width;
        svg += fmt::format("<path d=\"M{:.1f} {:.1f}V{:.1f}\" stroke=\"#ddd\"/>\n", x, kTop,
                           kTop + height);
        svg += text_at(x, kTop + height + 18, label, "text-anchor=\"middle\"");
    });
    svg += fmt::format(
        "<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" fill=\"none\" "
        "stroke=\"#444\"/>\n",
        kLeft, kTop, width, height);
    svg += text_at(kLeft + width / 2, kTop + height + 38, chart.x_name, "text-anchor=\"middle\"");
    svg += fmt::format(
        "<text transform=\"translate(20 {:.1f}) rotate(-90)\" text-anchor=\"middle\">{}</text>\n",
        kTop + height / 2, escaped(chart.y_name));

    std::size_t index = 0;
    double legend_end = kLeft + width;  // it grows to the left
    for (const Series& series : chart.series) {
        const char* colour = kColours[index % std::size(kColours)];
        std::string line, marks;
        for (std::size_t i = 0; i < series.x.size(); ++i) {
            if (!shown(series, i)) continue;
            const double x = kLeft + across.share(series.x[i]) * width;
            const double y = kTop + (1 - up.share(series.y[i])) * height;
            line += fmt::format("{}{:.1f} {:.1f}", line.empty() ? "M" : "L", x, y);
            marks += fmt::format("<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"2.5\"/>\n", x, y);
        }
        if (series.joined && !line.empty())
            svg += fmt::format("<path d=\"{}\" fill=\"none\" stroke=\"{}\"/>\n", line, colour);
        svg += fmt::format("<g fill=\"{}\">\n{}</g>\n", colour, marks);
        if (!series.name.empty()) {
            legend_end -= kLetter * static_cast<double>(series.name.size());
            svg += text_at(legend_end, 40, series.name, "");
            svg += fmt::format("<circle cx=\"{:.1f}\" cy=\"36\" r=\"4\" fill=\"{}\"/>\n",
                               legend_end - 8, colour);
            legend_end -= 28;
        }
        ++index;
    }
    if (left_out > 0)
        svg += text_at(
            kLeft, kHeight - 8,
            fmt::format(
                "{} point{} cannot be shown on {}", left_out, left_out == 1 ? "" : "s",
                chart.logarithmic_y || chart.logarithmic_x ? "a logarithmic axis" : "this chart"),
            "fill=\"#a00\"");
    return svg + "</svg>\n";
}

std::string above(const std::string& upper_svg, const std::string& lower_svg) {
    return head(kWidth, 2 * kHeight) + upper_svg +
           fmt::format("<g transform=\"translate(0 {})\">\n", kHeight) + lower_svg +
           "</g>\n</svg>\n";
}

PatternPicture::PatternPicture(std::string title, int height, int width)
    : title_(std::move(title)),
      height_(height),
      width_(width),
      rows_(std::min(height, 400)),
      columns_(std::min(width, 400)),
      counts_(static_cast<std::size_t>(rows_) * static_cast<std::size_t>(columns_)) {}

void PatternPicture::mark(int row, int column) {
    const auto y = static_cast<std::size_t>(static_cast<long long>(row) * rows_ / height_);
    const auto x = static_cast<std::size_t>(static_cast<long long>(column) * columns_ / width_);
    counts_[y * static_cast<std::size_t>(columns_) + x] += 1;
}

std::string PatternPicture::svg() const {
    constexpr double side = 600, margin = 46;
    const double cell = side / std::max(rows_, columns_);
    const double width = cell * columns_, height = cell * rows_;
    double fullest = 1;
    for (const double count : counts_) fullest = std::max(fullest, count);
    std::string svg = head(std::max(width + 2 * margin, 320.0), height + 2 * margin);
    svg += text_at(margin, 26, title_, "font-size=\"15\" font-weight=\"bold\"");
    svg += fmt::format(
        "<rect x=\"{0}\" y=\"{0}\" width=\"{1:.2f}\" height=\"{2:.2f}\" fill=\"none\" "
        "stroke=\"#444\"/>\n<g fill=\"{3}\">\n",
        margin, width, height, kColours[0]);
    for (int y = 0; y < rows_; ++y) {
        for (int x = 0; x < columns_; ++x) {
            const double count =
                counts_[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns_) +
                        static_cast<std::size_t>(x)];
            if (count == 0) continue;
            svg += fmt::format(
                "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" "
                "opacity=\"{:.2f}\"/>\n",
                margin + cell * x, margin + cell * y, cell, cell, 0.35 + 0.65 * count / fullest);
        }
    }
    return svg + "</g>\n</svg>\n";
}

}  // namespace program
