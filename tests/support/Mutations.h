#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Texts that are nearly playlists.
namespace mutation {

/// Changes texts at random, the same way for the same seed.
class Mutator {
  public:
    explicit Mutator(std::uint64_t seed) : random_(seed) {}

    /// A text of the corpus with a few changes.
    std::string mutated(const std::vector<std::string>& corpus) {
        std::string text = corpus[below(corpus.size())];
        const std::size_t changes = 1 + below(4);
        for (std::size_t change = 0; change < changes; ++change)
            changeOnce(text, corpus);
        return text;
    }

  private:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }

    std::size_t lineStart(const std::string& text) {
        if (text.empty()) return 0;
        const std::size_t feed = text.rfind('\n', below(text.size()));
        return feed == std::string::npos ? 0 : feed + 1;
    }

    static std::size_t lineLength(const std::string& text, std::size_t start) {
        const std::size_t feed = text.find('\n', start);
        return feed == std::string::npos ? text.size() - start : feed + 1 - start;
    }

    std::string anyLine(const std::vector<std::string>& corpus) {
        const std::string& text = corpus[below(corpus.size())];
        const std::size_t start = lineStart(text);
        return text.substr(start, lineLength(text, start));
    }

    void changeOnce(std::string& text, const std::vector<std::string>& corpus) {
        static const std::vector<std::string_view> pieces = {",",
                                                             "=",
                                                             "\"",
                                                             ":",
                                                             "\n",
                                                             "\r",
                                                             "\r\n",
                                                             "#",
                                                             "@",
                                                             "-",
                                                             "+",
                                                             ".",
                                                             " ",
                                                             "x",
                                                             "0",
                                                             "99999999999999999999",
                                                             "=\"",
                                                             "\",",
                                                             "{$n}",
                                                             "{",
                                                             "$",
                                                             "}",
                                                             "/",
                                                             "/range/5-9",
                                                             "/range/9-5",
                                                             "YES",
                                                             "NO",
                                                             "NONE",
                                                             "-1",
                                                             "1e3",
                                                             "\xEF\xBB\xBF",
                                                             "\xFF",
                                                             "Z",
                                                             "+02:00",
                                                             "2020-01-01T00:00:00Z",
                                                             ",0",
                                                             "1.5"};
        const std::size_t start = lineStart(text);
        const std::size_t length = lineLength(text, start);
        const std::size_t position = below(text.size() + 1);
        switch (below(10)) {
            case 0:
                text.erase(start, length);
                break;
            case 1:
                text.insert(start, text.substr(start, length));
                break;
            case 2:
                text.insert(lineStart(text), text.substr(start, length));
                break;
            case 3:
                text.insert(start, anyLine(corpus));
                break;
            case 4:
                text.resize(position);
                break;
            case 5:
                if (position < text.size()) text[position] = static_cast<char>(below(256));
                break;
            case 6:
                text.erase(position, 1 + below(8));
                break;
            default:
                text.insert(position, pieces[below(pieces.size())]);
                break;
        }
    }

    std::mt19937_64 random_;
};

}  // namespace mutation
