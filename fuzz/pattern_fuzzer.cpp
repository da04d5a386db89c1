#include "fuzz/Playlists.h"
#include "tests/support/PlainForms.h"

namespace {

/// All that can be seen of reading a pattern from a stream.
template <typename Read>
std::string outcomeOfPattern(std::istream& input, Read read) {
    std::string rejected;
    const std::string outcome = playlist::outcomeOf([&]() -> std::string {
        const auto pattern = read(input, rejected);
        if (pattern == nullptr) return "rejected: " + rejected;
        return "name " + pattern->name + ", repeated " + std::to_string(pattern->repeatCount) + ":\n" +
               pattern->body;
    });
    return outcome + "\n" + playlist::leftIn(input);
}

}  // namespace

/// The first part of the text is the start line, the second a line before it, the rest the input.
VELHLS_FUZZ_TARGET(pattern) {
    fuzz::Parts parts(text);
    const std::string startLine = parts.next();
    const std::string prefix = parts.next();
    const std::string lines = parts.rest();
    const auto readByLibrary = [&](std::istream& input, std::string& rejected) {
        VELHLSParsingStatus status;
        status.error = VELHLSParsingErrorNone;
        std::istringstream head(prefix);
        auto pattern = VELHLSMediaPattern::parseMediaPattern(startLine, head, input, &status);
        rejected = status.message;
        fuzz::expect((pattern == nullptr) == (status.error == VELHLSParsingErrorMediaPattern),
                     "what is rejected sets the status");
        return pattern;
    };
    const auto readPlainly = [&](std::istream& input, std::string& rejected) {
        return plain::readPattern(startLine, prefix, input, rejected);
    };

    std::istringstream plainInput(lines);
    const std::string expected = outcomeOfPattern(plainInput, readPlainly);
    std::istringstream whole(lines);
    const std::string outcome =
        fuzz::bounded(text.size(), {32}, [&] { return outcomeOfPattern(whole, readByLibrary); });
    fuzz::expectEqual(outcome, expected, "the pattern as its plain form");
    stream_buffer::Hidden hidden(lines);
    std::istream characters(&hidden);
    fuzz::expectEqual(outcomeOfPattern(characters, readByLibrary), expected, "character by character");
    stream_buffer::PieceByPiece pieces(lines, 1 + text.size() % 61);
    std::istream inPieces(&pieces);
    fuzz::expectEqual(outcomeOfPattern(inPieces, readByLibrary), expected, "piece by piece");
}
