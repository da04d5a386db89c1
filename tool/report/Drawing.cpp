#include "tool/report/Drawing.h"

#include "tool/Utf8.h"
#include "tool/report/Styles.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

constexpr char namespaceOfSvg[] = "http://www.w3.org/2000/svg";

std::string viewBox(double height) {
    return "0 0 " + pixels(drawingWidth) + " " + pixels(height);
}

}  // namespace

void appendFigure(Markup& page, const std::string& id, const Drawing& drawing) {
    page.open("div",
              {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", drawing.title}});
    page.open("svg", {{"id", id},
                      {"viewBox", viewBox(drawing.height)},
                      {"role", "img"},
                      {"aria-labelledby", id + ".title " + id + ".desc"}});
    page.leaf("title", drawing.title, {{"id", id + ".title"}});
    page.leaf("desc", drawing.description, {{"id", id + ".desc"}});
    page.verbatim(drawing.content.string()).close().close().verbatim("\n");
}

std::string standaloneSvg(const std::vector<Drawing>& drawings) {
    constexpr double margin = 12.0;
    double height = margin;
    std::string title;
    std::string description;
    for (const Drawing& drawing : drawings) {
        height += drawing.height + margin;
        title += (title.empty() ? "" : "; ") + drawing.title;
        description += (description.empty() ? "" : " ") + drawing.description;
    }
    Markup svg;
    const std::string box =
        pixels(-margin) + " 0 " + pixels(drawingWidth + 2 * margin) + " " + pixels(height);
    svg.open("svg", {{"xmlns", namespaceOfSvg},
                     {"viewBox", box},
                     {"width", pixels(drawingWidth + 2 * margin)},
                     {"height", pixels(height)},
                     {"role", "img"},
                     {"aria-labelledby", "title desc"}});
    svg.leaf("title", title, {{"id", "title"}}).leaf("desc", description, {{"id", "desc"}}).verbatim("\n");
    svg.open("style").verbatim(pictureStyle.text).close().verbatim("\n");
    drawRectangle(svg, "paper", -margin, 0, drawingWidth + 2 * margin, height);
    double top = margin;
    for (const Drawing& drawing : drawings) {
        svg.open("g", {{"transform", "translate(0 " + pixels(top) + ")"}});
        svg.verbatim(drawing.content.string()).close().verbatim("\n");
        top += drawing.height + margin;
    }
    return svg.close().string() + "\n";
}

void drawText(Markup& out, std::string_view style, double x, double y, std::string_view text) {
    out.leaf("text", text, {{"class", std::string(style)}, {"x", pixels(x)}, {"y", pixels(y)}});
}

void drawLine(Markup& out, std::string_view style, double x1, double y1, double x2, double y2) {
    std::string path = "M" + pixels(x1) + " " + pixels(y1);
    if (x1 == x2)
        path += "V" + pixels(y2);
    else if (y1 == y2)
        path += "H" + pixels(x2);
    else
        path += "L" + pixels(x2) + " " + pixels(y2);
    drawPath(out, style, path);
}

void drawRectangle(Markup& out, std::string_view style, double x, double y, double width, double height,
                   const std::string& title) {
    const Markup::Attributes attributes = {{"class", std::string(style)},
                                           {"x", pixels(x)},
                                           {"y", pixels(y)},
                                           {"width", pixels(width)},
                                           {"height", pixels(height)}};
    if (title.empty()) {
        out.empty("rect", attributes);
    } else {
        out.open("rect", attributes).leaf("title", title).close();
    }
}

void drawPath(Markup& out, std::string_view style, const std::string& path, const std::string& title) {
    const Markup::Attributes attributes = {{"class", std::string(style)}, {"d", path}};
    if (title.empty()) {
        out.empty("path", attributes);
    } else {
        out.open("path", attributes).leaf("title", title).close();
    }
}

std::string signPath(Sign sign, double x, double y) {
    const auto from = [](double left, double top) { return "M" + pixels(left) + " " + pixels(top); };
    switch (sign) {
        case Sign::Circle:
            return from(x - 4, y) + "a4 4 0 1 0 8 0a4 4 0 1 0-8 0z";
        case Sign::Square:
            return from(x - 4, y - 4) + "h8v8h-8z";
        case Sign::Diamond:
            return from(x, y - 5) + "l5 5-5 5-5-5z";
        case Sign::TriangleDown:
            return from(x - 5, y - 5) + "h10l-5 9z";
        case Sign::TriangleUp:
            return from(x - 5, y + 5) + "h10l-5-9z";
        case Sign::Cross:
            return from(x - 4, y - 4) + "l8 8m0-8l-8 8";
        case Sign::Bar:
            return from(x - 5, y - 4) + "h10v8h-10z";
    }
    return {};
}

void drawLegend(Markup& out, double y, const std::vector<LegendEntry>& entries) {
    constexpr double perCharacter = 7.0;
    constexpr double between = 34.0;
    double x = 6.0;
    for (const LegendEntry& entry : entries) {
        drawPath(out, entry.style, signPath(entry.sign, x, y - 4));
        drawText(out, "small", x + 10, y, entry.word);
        x += between + perCharacter * static_cast<double>(utf8::countCharacters(entry.word));
    }
}

}  // namespace tool::report
