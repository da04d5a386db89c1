#pragma once

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/MediaDescription.h"

/// What must hold of the lines of the records that any text makes.
namespace oracle {

/// Looks for the first thing that does not hold.
class RecordLinesPromises {
  public:
    explicit RecordLinesPromises(const std::string& text) : text_(text), document_(text) {}

    /// Names what does not hold; empty when everything does.
    std::string broken() {
        lookAtMaster();
        lookAtMedia();
        return broken_;
    }

  private:
    using Lines = VELHLSRecordLines::Lines;

    void expect(bool holds, const std::string& promise) {
        if (!holds && broken_.empty()) broken_ = promise;
    }

    /// The models read over carriage returns, wherever they stand.
    static std::string asRead(std::string text) {
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }
    std::string lineAsRead(std::size_t number) const {
        return asRead(std::string(document_.line(number).text));
    }

    template <typename Record>
    Lines linesOf(const VELHLSRecordLines& lines, const Record& record) {
        const auto found = lines.of(record);
        const bool areThere =
            found && found->first >= 1 && found->first <= found->last && found->last <= document_.lineCount();
        expect(areThere, "each record has its lines, in the document");
        return areThere ? *found : Lines{1, 1};
    }

    /// The same as the parse of the text, with the same reason.
    template <typename Playlist>
    void expectSame(const std::shared_ptr<Playlist>& made, const VELHLSReason& reason,
                    std::shared_ptr<Playlist> (*parse)(std::string_view, VELHLSReason*)) {
        VELHLSReason expectedReason;
        const std::shared_ptr<Playlist> expected = parse(text_, &expectedReason);
        expect((made == nullptr) == (expected == nullptr), "a document is accepted as its text is");
        expect(reason.ruleId == expectedReason.ruleId && reason.line == expectedReason.line &&
                   reason.column == expectedReason.column && reason.message == expectedReason.message,
               "a document is rejected for the reason of its text");
        if (made == nullptr || expected == nullptr) return;
        expect(playlist::describe(*made) == playlist::describe(*expected),
               "a document makes the model of its text");
    }

    /// Each record of a master playlist is what its lines say alone.
    void lookAtMaster() {
        VELHLSRecordLines lines;
        VELHLSReason reason;
        const auto manifest = lines.parseManifest(document_, &reason);
        expectSame(manifest, reason, VELHLSParsedManifest::parseManifest);
        if (manifest == nullptr) return;
        for (const auto& [bandwidth, variant] : manifest->variants) {
            const Lines found = linesOf(lines, *variant);
            expect(found.last == found.first + (variant->isIFrame ? 0 : 1), "a variant has its tag and URI");
            const std::string uriLine = variant->isIFrame ? "" : lineAsRead(found.last);
            auto alone = VELHLSMediaVariant::parseVariant(lineAsRead(found.first), uriLine);
            expect(alone != nullptr && alone->uri == variant->uri && alone->codecs == variant->codecs &&
                       alone->bandwidth == bandwidth && alone->groupIds == variant->groupIds,
                   "a variant is what its lines say");
        }
        for (const auto& [type, groups] : manifest->renditions) {
            for (const auto& [groupId, group] : groups) {
                for (const auto& [name, rendition] : group) {
                    const Lines found = linesOf(lines, *rendition);
                    const auto alone = VELHLSMediaStreamRendition::parse(lineAsRead(found.first));
                    const bool isSame = alone != nullptr && alone->name == name &&
                                        alone->groupId == groupId && alone->type == type &&
                                        alone->uri == rendition->uri;
                    expect(isSame && found.first == found.last, "a rendition is what its line says");
                }
            }
        }
        for (const auto& entry : manifest->sessionData) {
            const Lines found = linesOf(lines, *entry);
            expect(lineAsRead(found.first).find("EXT-X-SESSION-DATA") != std::string::npos,
                   "session data has its line");
        }
        for (const auto& key : manifest->sessionKeys) {
            const Lines found = linesOf(lines, *key);
            expect(lineAsRead(found.first).find("EXT-X-SESSION-KEY") != std::string::npos,
                   "a session key has its line");
        }
    }

    void lookAtMedia() {
        VELHLSRecordLines lines;
        VELHLSReason reason;
        const auto stream = lines.parseMediaStream(document_, &reason);
        expectSame(stream, reason, VELHLSMediaStream::parseMediaStream);
        if (stream == nullptr) return;
        const bool mayRepeat = asRead(text_).find("ZOR-PATTERN_START") != std::string::npos;
        std::size_t before = 0;
        for (const auto& segment : stream->segments) {
            const Lines found = linesOf(lines, *segment);
            if (mayRepeat) continue;
            expect(found.first > before, "a segment has lines of its own, after those of the one before");
            const std::string uriLine = lineAsRead(found.last);
            const bool isUri = uriLine.compare(0, segment->uri.size(), segment->uri) == 0 &&
                               uriLine.find_first_not_of(" \t\v\f", segment->uri.size()) == std::string::npos;
            expect(isUri, "a segment's last line is its URI, and white space after it");
            before = found.last;
        }
    }

    std::string text_;
    VELHLSDocument document_;
    std::string broken_;
};

}  // namespace oracle
