#include "tests/support/WriterPromises.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Corpus.h"
#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/WholePlaylists.h"

namespace {

std::string brokenPromise(const std::string& text) {
    const std::string ofMaster = writer::brokenMasterPromise(text);
    return ofMaster.empty() ? writer::brokenMediaPromise(text) : ofMaster;
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForTheExamples) {
    for (const std::string& text : corpus::texts())
        EXPECT_EQ(brokenPromise(text), "") << text;
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForBeginningsOfTheExamples) {
    for (const std::string& text : corpus::beginnings())
        ASSERT_EQ(brokenPromise(text), "") << text;
}

TEST(VELHLSPlaylistWriter, KeepsItsPromisesForMutatedPlaylists) {
    const std::vector<std::string> texts = corpus::texts();
    const std::uint64_t count = corpus::numberOfMutations(4000);
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
