// The library reads what the plain form of its rules reads, and reads back what it writes: for the examples and for
// thousands of playlists that are nearly ones. The fuzz targets compare the same.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/ManifestRoundTrip.h"
#include "tests/support/MediaDescription.h"
#include "tests/support/MediaRoundTrip.h"
#include "tests/support/Mutations.h"
#include "tests/support/Outcome.h"
#include "tests/support/Parses.h"
#include "tests/support/PlainPlaylists.h"
#include "tests/support/PlaylistText.h"

namespace {

/// The model, or the kind of the exception, with the status and what is left in the stream.
template <typename Parse>
std::string outcomeOf(const std::string& text, Parse parse) {
    std::istringstream input(text);
    return playlist::outcomeWithStream(input, parse);
}

template <typename Parse>
std::string differencesAfterRoundTrip(const std::string& text, Parse parse) {
    std::istringstream input(text);
    try {
        const auto read = parse(input, nullptr);
        return read == nullptr ? "" : playlist::differencesAfterRoundTrip(*read);
    } catch (const std::logic_error&) {
        return "";
    }
}

void expectPlainForm(const std::string& text) {
    ASSERT_EQ(outcomeOf(text, VELHLSMediaStream::internalParseMediaStream),
              outcomeOf(text, plain::mediaStream))
        << text;
    ASSERT_EQ(outcomeOf(text, VELHLSParsedManifest::internalParseManifest), outcomeOf(text, plain::manifest))
        << text;
    ASSERT_EQ(differencesAfterRoundTrip(text, playlist::parseMedia), "") << text;
    ASSERT_EQ(differencesAfterRoundTrip(text, playlist::parseMaster), "") << text;
}

std::vector<std::string> examples() {
    std::vector<std::string> texts;
    for (const char* const folder : {VELHLS_EXAMPLE_PLAYLISTS, VELHLS_EXAMPLE_FINDINGS}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            constexpr std::uintmax_t largest = 4096;
            if (entry.path().extension() != ".m3u8" || entry.file_size() > largest) continue;
            // Its expansion takes seconds.
            if (entry.path().stem() == "pattern-too-large") continue;
            texts.push_back(playlist::contentOf(entry.path().string()));
        }
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

TEST(PlainForms, ReadTheExamplesAsTheLibraryDoes) {
    const std::vector<std::string> texts = examples();
    ASSERT_GT(texts.size(), 100U);
    for (const std::string& text : texts) {
        expectPlainForm(text);
        if (HasFatalFailure()) return;
    }
}

TEST(PlainForms, ReadMutatedPlaylistsAsTheLibraryDoes) {
    const std::vector<std::string> texts = examples();
    mutation::Mutator mutator(8216);
    for (int round = 0; round < 5000; ++round) {
        expectPlainForm(mutator.mutated(texts));
        if (HasFatalFailure()) return;
    }
}

struct Unreadable {
    std::string text;
    std::string reason;
};

TEST(PlainForms, NameEveryManifestThatIsNotReadBack) {
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=5";
    const std::vector<Unreadable> rows = {
        {"#EXT-X-START:TIME-OFFSET=1234567\n" + variant + "\nu\n", "a start offset with an exponent"},
        {"#EXT-X-SESSION-DATA:X=1,DATA-ID=\"a\",VALUE=\"b\"\n" + variant + "\nu\n", "session data"},
        {"#EXT-X-STREAM-INF:BANDWIDTH=-1\nu\n", "a negative bandwidth"},
        {variant + ",AVERAGE-BANDWIDTH=-1\nu\n", "a negative bandwidth"},
        {variant + ",PROGRAM-ID=-1\nu\n", "a negative program ID"},
        {variant + ",RESOLUTION=\"1,2\"\nu\n", "a resolution with a comma"},
    };
    for (const Unreadable& row : rows) {
        std::istringstream input(row.text);
        const auto manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
        ASSERT_NE(manifest, nullptr) << row.text;
        EXPECT_EQ(playlist::reasonNotToBeRead(*manifest), row.reason) << row.text;
        EXPECT_NE(outcomeOf(playlist::renderedManifest(*manifest), playlist::parseMaster),
                  outcomeOf(row.text, playlist::parseMaster))
            << row.text;
    }
}

}  // namespace
