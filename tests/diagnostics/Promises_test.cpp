#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Corpus.h"
#include "tests/support/DiagnosticsOracle.h"
#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"

namespace {

std::string brokenPromise(const std::string& text) {
    if (const std::string ofDetection = oracle::brokenDetection(text); !ofDetection.empty())
        return ofDetection;
    const std::string ofMaster = oracle::brokenPromise(text, VELHLSDiagnostics::Master);
    return ofMaster.empty() ? oracle::brokenPromise(text, VELHLSDiagnostics::Media) : ofMaster;
}

TEST(Diagnostics, KeepTheirPromisesForTheExamples) {
    for (const std::string& text : corpus::texts())
        EXPECT_EQ(brokenPromise(text), "") << text;
}

TEST(Diagnostics, KeepTheirPromisesForBeginningsOfTheExamples) {
    for (const std::string& text : corpus::beginnings())
        ASSERT_EQ(brokenPromise(text), "") << text;
}

TEST(Diagnostics, KeepTheirPromisesForMutatedPlaylists) {
    const std::vector<std::string> texts = corpus::texts();
    const std::uint64_t count = corpus::numberOfMutations(3000);
    mutation::Mutator mutator(20261121);
    int failures = 0;
    for (std::uint64_t run = 0; run < count && failures < 5; ++run) {
        const std::string text = mutator.mutated(texts);
        const std::string broken = brokenPromise(text);
        failures += broken.empty() ? 0 : 1;
        EXPECT_EQ(broken, "") << "mutation " << run << ":\n" << text;
    }
}

}  // namespace
