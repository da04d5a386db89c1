#include <algorithm>

#include "fuzz/Playlists.h"
#include "tests/support/PlainForms.h"

namespace {

/// The lines of the text as std::getline reads them, without their carriage returns, and without those that are empty
/// then.
std::vector<std::string> plainLines(const std::string& text) {
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

/// The same lines as the library reads them: each as the URI of a variant.
std::vector<std::string> linesReadFrom(std::streambuf& buffer) {
    std::istream input(&buffer);
    const auto manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
    fuzz::expect(manifest != nullptr, "URIs of any kind are read");
    std::vector<std::string> lines;
    for (const auto& variant : manifest->streamVariants)
        lines.push_back(variant->uri);
    return lines;
}

void expectLines(std::streambuf& buffer, const std::vector<std::string>& expected, const char* relation) {
    const std::vector<std::string> seen = linesReadFrom(buffer);
    fuzz::expect(seen.size() == expected.size(), relation, std::to_string(seen.size()) + " lines");
    for (std::size_t index = 0; index < seen.size(); ++index)
        fuzz::expectEqual(seen[index], expected[index], relation);
}

}  // namespace

VELHLS_FUZZ_TARGET(lines) {
    std::istringstream input(text);
    std::string playlist;
    for (std::string line; std::getline(input, line);) {
        if (line.find_first_not_of('\r') == std::string::npos) continue;
        playlist +=
            "#EXT-X-STREAM-INF:BANDWIDTH=1" + std::string(line.size() % 3 == 0 ? "\r\n" : "\n") + line + "\n";
    }
    if (playlist.empty()) return;
    if (text.back() != '\n') playlist.pop_back();

    const std::vector<std::string> expected = plainLines(text);
    std::stringbuf whole(playlist);
    expectLines(whole, expected, "lines in one piece as std::getline");
    stream_buffer::Hidden hidden(playlist);
    expectLines(hidden, expected, "lines character by character as std::getline");
    for (const std::size_t size : {std::size_t{1}, 1 + text.size() % 61, 1 + text.size() % 1021}) {
        stream_buffer::PieceByPiece pieces(playlist, size);
        expectLines(pieces, expected, "lines piece by piece as std::getline");
    }
}
