#include "tool/report/PageNames.h"

#include <algorithm>

#include "tool/InputFile.h"
#include "tool/Path.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

/// The folder that two folders lie in.
std::string commonOf(const std::string& left, const std::string& right) {
    const auto differ = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    return folderOf(std::string(left.begin(), differ.first));
}

}  // namespace

PageNames::PageNames(const std::vector<Source>& sources) {
    bool isFirst = true;
    for (const Source& source : sources) {
        sources_.emplace(source.path, &source);
        if (source.path == standardInput) continue;
        const std::string folder = folderOf(source.path);
        commonFolder_ = isFirst ? folder : commonOf(commonFolder_, folder);
        isFirst = false;
    }
}

std::string PageNames::nameOf(const std::string& path) const {
    const bool isBelow = path.compare(0, commonFolder_.size(), commonFolder_) == 0;
    return isBelow && path != standardInput ? path.substr(commonFolder_.size()) : nameInMessages(path);
}

std::string PageNames::sourceAnchor(const std::string& path) const {
    return anchorOf(nameOf(path), "source");
}

void PageNames::appendName(Markup& page, const std::string& path) const {
    if (!has(path)) {
        page.text(nameOf(path));
    } else {
        page.leaf("a", nameOf(path), {{"href", "#" + sourceAnchor(path)}});
    }
}

void PageNames::appendLine(Markup& page, const std::string& path, std::size_t line,
                           const std::string& text) const {
    const auto source = sources_.find(path);
    const auto holds = [line](const SourceLine& each) { return each.number == line; };
    const bool isShown = source != sources_.end() &&
                         std::any_of(source->second->lines.begin(), source->second->lines.end(), holds);
    if (!isShown) {
        page.text(text);
    } else {
        page.leaf("a", text, {{"href", "#" + anchorOf(nameOf(path), lineAnchor(line))}});
    }
}

}  // namespace tool::report
