#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/report/Markup.h"

namespace tool::report {

/// The width of all drawings, in units of SVG.
inline constexpr double drawingWidth = 960.0;

/// A part of a picture: what it shows in SVG, with its size, and in words.
struct Drawing {
    std::string title;
    std::string description;
    double height = 0.0;
    Markup content;
};

/// The drawing as an element of HTML, which is to have this id.
void appendFigure(Markup& page, const std::string& id, const Drawing& drawing);

/// The drawings one below the other, as an SVG of its own with its style sheet.
[[nodiscard]] std::string standaloneSvg(const std::vector<Drawing>& drawings);

/// @name What drawings are made of. The class names a style of picture.css.
/// @{
void drawText(Markup& out, std::string_view style, double x, double y, std::string_view text);
void drawLine(Markup& out, std::string_view style, double x1, double y1, double x2, double y2);
void drawRectangle(Markup& out, std::string_view style, double x, double y, double width, double height,
                   const std::string& title = {});
void drawPath(Markup& out, std::string_view style, const std::string& path, const std::string& title = {});
/// @}

/// A sign around a point: what tells marks apart beside their colours.
enum class Sign { Circle, Square, Diamond, TriangleDown, TriangleUp, Cross, Bar };
[[nodiscard]] std::string signPath(Sign sign, double x, double y);

/// A sign and what it stands for.
struct LegendEntry {
    Sign sign;
    std::string_view style;
    std::string_view word;
};

/// One line of them.
void drawLegend(Markup& out, double y, const std::vector<LegendEntry>& entries);

}  // namespace tool::report
