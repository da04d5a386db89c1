#include "tool/Playlist.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/Printable.h"

namespace tool {
namespace {

/// How far a reader came in a text.
struct ReadingStop {
    std::size_t lineNumber;
    std::string_view line;
    /// Everything was read, and then a line more was asked for.
    bool atEnd;
};

ReadingStop whereReadingStopped(std::istringstream& input, std::string_view text) {
    const bool atEnd = input.eof();
    input.clear();
    const auto consumed = static_cast<std::size_t>(input.tellg());
    // The line feed that ends the last line belongs to it.
    const std::size_t lastCharacter = consumed == 0 ? 0 : consumed - 1;
    const std::string_view before = text.substr(0, lastCharacter);
    const std::size_t start = before.rfind('\n') + 1;
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const auto feeds = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    return {feeds + 1, text.substr(start, end - start), atEnd};
}

/// Parses, and tells of a rejection where it stands.
class Parser {
  public:
    Parser(std::string name, std::string_view text, KindDecision decision)
        : name_(std::move(name)), text_(text), input_(std::string(text)), decision_(std::move(decision)) {}

    Playlist parse() {
        try {
            if (decision_.kind == PlaylistKind::master) {
                return accept(VELHLSParsedManifest::parseManifest(input_, &status_));
            }
            return accept(VELHLSMediaStream::parseMediaStream(input_, &status_));
        } catch (const std::logic_error& error) {
            // The exceptions of number conversion are the library's way to reject a number.
            reject(error.what());
        }
    }

  private:
    template <typename Model>
    Playlist accept(Model model) {
        if (model == nullptr) reject(reasonOfNull());
        return {std::move(model), status_};
    }

    [[noreturn]] void reject(const std::string& reason) {
        const ReadingStop stop = whereReadingStopped(input_, text_);
        throw Failure(rejected,
                      name_ + ":" + std::to_string(stop.lineNumber) + ": error: " + printable(reason) +
                          (stop.atEnd ? "" : ", reading " + quotedExcerpt(stop.line)) + "; read as a " +
                          std::string(nameOf(decision_.kind)) + " playlist " + decision_.reason);
    }

    [[nodiscard]] std::string reasonOfNull() const {
        if (status_.error == VELHLSParsingErrorMediaPattern) {
            return "media pattern tag is malformed or out of place: " + quotedExcerpt(status_.message);
        }
        if (!input_.eof()) return "the playlist is rejected at this line";
        if (decision_.kind == PlaylistKind::master) {
            return "the playlist is rejected at its end: it needs at least one variant, every tag needs what "
                   "belongs to it, the groups that variants name must exist, the groups of one type must "
                   "hold the "
                   "same renditions, and session data and session keys must not repeat";
        }
        return "the playlist is rejected at its end: the last segment needs a duration and a URI, and the "
               "last URI "
               "line needs a line feed";
    }

    std::string name_;
    std::string_view text_;
    std::istringstream input_;
    KindDecision decision_;
    VELHLSParsingStatus status_;
};

KindDecision decideKind(const std::string& path, std::string_view text,
                        std::optional<PlaylistKind> askedKind) {
    if (askedKind) return {*askedKind, "as asked for"};
    std::optional<KindDecision> decision = detectKind(text);
    if (decision) return *std::move(decision);
    throw Failure(rejected,
                  nameInMessages(path) +
                      ":1: error: cannot tell whether this is a master or a media playlist: it has no tag "
                      "that only one of them has; if it is one, say which with --kind");
}

}  // namespace

Playlist readPlaylist(const std::string& path, std::optional<PlaylistKind> askedKind) {
    const std::string text = contentOf(path);
    return Parser(nameInMessages(path), text, decideKind(path, text, askedKind)).parse();
}

std::string cleanText(const Playlist& playlist) {
    std::ostringstream out;
    const std::int32_t result =
        std::visit([&out](const auto& model) { return model->render(out); }, playlist.model);
    if (result != 0) throw Failure(rejected, "error: the parsed playlist cannot be written");
    return out.str();
}

}  // namespace tool
