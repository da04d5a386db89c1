#include "tests/support/WriterPromises.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/WholePlaylists.h"

namespace {

/// The example playlists that are not large, the failing ones of the rules, and the two that hold every tag.
std::vector<std::string> corpus() {
    std::vector<std::string> texts = {whole::master, whole::media};
    for (const char* const folder : {VELHLS_EXAMPLE_PLAYLISTS, VELHLS_EXAMPLE_FINDINGS}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            constexpr std::uintmax_t largest = 4096;
            if (entry.path().extension() != ".m3u8" || entry.file_size() > largest) continue;
            texts.push_back(playlist::contentOf(entry.path().string()));
        }
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

std::string brokenPromise(const std::string& text) {
    const std::string ofMaster = writer::brokenMasterPromise(text);
    return ofMaster.empty() ? writer::brokenMediaPromise(text) : ofMaster;
}

/// How many mutated playlists are looked at: a few thousand, or as many as VELHLS_MUTATIONS says.
std::uint64_t numberOfMutations() {
    constexpr std::uint64_t few = 4000;
    const char* const asked = std::getenv("VELHLS_MUTATIONS");
    return asked == nullptr ? few : std::strtoull(asked, nullptr, 10);
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForTheExamples) {
    for (const std::string& text : corpus())
        EXPECT_EQ(brokenPromise(text), "") << text;
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForEveryBeginningOfTheExamples) {
    for (const std::string& text : corpus()) {
        for (std::size_t length = 0; length < std::min<std::size_t>(text.size(), 600); ++length) {
            ASSERT_EQ(brokenPromise(text.substr(0, length)), "") << text.substr(0, length);
        }
    }
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForMutatedPlaylists) {
    const std::vector<std::string> texts = corpus();
    const std::uint64_t count = numberOfMutations();
    mutation::Mutator mutator(82161);
    int failures = 0;
    for (std::uint64_t run = 0; run < count && failures < 5; ++run) {
        const std::string text = mutator.mutated(texts);
        const std::string broken = brokenPromise(text);
        failures += broken.empty() ? 0 : 1;
        EXPECT_EQ(broken, "") << "mutation " << run << ":\n" << text;
    }
}

}  // namespace
