#pragma once

#include <map>
#include <string>
#include <vector>

#include "tool/report/Markup.h"
#include "tool/report/Source.h"

namespace tool::report {

/// How a page names the playlists, and what of them it can link to.
class PageNames {
  public:
    /// The sources must live as long as this.
    explicit PageNames(const std::vector<Source>& sources);

    /// The path without the folder that all have in common.
    [[nodiscard]] std::string nameOf(const std::string& path) const;

    /// The anchor of a playlist's source: "low.m3u8-source".
    [[nodiscard]] std::string sourceAnchor(const std::string& path) const;

    /// Whether the page has lines of the playlist.
    [[nodiscard]] bool has(const std::string& path) const { return sources_.count(path) != 0; }

    /// Appends the name of a playlist, as a link to its lines where the page has some.
    void appendName(Markup& page, const std::string& path) const;

    /// Appends the text, as a link to the line where the page has that.
    void appendLine(Markup& page, const std::string& path, std::size_t line, const std::string& text) const;

  private:
    std::map<std::string, const Source*> sources_;
    std::string commonFolder_;
};

}  // namespace tool::report
