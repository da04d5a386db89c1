// The elements of a page of "velhls report", to see that nothing of a playlist becomes one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace page {

/// The elements of a page with the names of their attributes, "a href", in their order; "broken" where one is not well-formed.
class Elements {
  public:
    explicit Elements(const std::string& page) : rest_(page) {
        rest_.remove_prefix(rest_.find('\n') + 1);
        while (isWell_ && !rest_.empty())
            read();
        if (!isWell_ || !open_.empty()) names_ = {"broken"};
    }

    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

  private:
    static constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzBL0123456789-";

    void read() {
        const std::size_t start = std::min(rest_.find('<'), rest_.size());
        rest_.remove_prefix(start);
        if (rest_.empty()) return;
        rest_.remove_prefix(1);
        if (rest_.substr(0, 1) == "/") return readEnd();
        const std::string name = takeName();
        std::string element = name;
        while (rest_.substr(0, 1) == " ")
            element += readAttribute();
        const bool isEmpty = rest_.substr(0, 2) == "/>";
        isWell_ = isWell_ && !name.empty() && (isEmpty || rest_.substr(0, 1) == ">");
        if (!isEmpty) open_.push_back(name);
        names_.push_back(element);
    }

    void readEnd() {
        rest_.remove_prefix(1);
        isWell_ = !open_.empty() && takeName() == open_.back() && rest_.substr(0, 1) == ">";
        if (isWell_) open_.pop_back();
    }

    std::string readAttribute() {
        rest_.remove_prefix(1);
        const std::string name = takeName();
        const std::size_t end = rest_.find('"', 2);
        isWell_ = isWell_ && !name.empty() && rest_.substr(0, 2) == "=\"" && end != std::string_view::npos &&
                  rest_.substr(0, end).find('<') == std::string_view::npos;
        rest_.remove_prefix(isWell_ ? end + 1 : rest_.size());
        return " " + name;
    }

    std::string takeName() {
        const std::size_t end = std::min(rest_.find_first_not_of(letters), rest_.size());
        const std::string name(rest_.substr(0, end));
        rest_.remove_prefix(end);
        return name;
    }

    std::string_view rest_;
    bool isWell_ = true;
    std::vector<std::string> open_;
    std::vector<std::string> names_;
};

/// Of a page, whose first line is its document type, or of a picture without one.
inline std::vector<std::string> elementsOf(const std::string& page) {
    return Elements(page).names();
}

}  // namespace page
