// What holds of the document of every text, over texts of all kinds and thousands that are nearly playlists.
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/hostile/HostileInputs.h"
#include "tests/support/DocumentOracle.h"
#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/WholePlaylists.h"

namespace {

using namespace std::string_literals;

std::vector<std::string> corpus() {
    std::vector<std::string> texts = {whole::master, whole::media};
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_EXAMPLE_PLAYLISTS)) {
        if (entry.file_size() < 20000) paths.insert(entry.path());
    }
    for (const auto& path : paths)
        texts.push_back(playlist::contentOf(path.string()));
    return texts;
}

void expectPromises(const std::string& text) {
    EXPECT_EQ(oracle::DocumentPromises(text).broken(), "") << text;
}

TEST(VELHLSDocumentPromises, HoldForTextsOfFewCharacters) {
    const std::vector<std::string> pieces = {"",      "\n", "\r",       "\r\n",        "\0"s,
                                             " ",     "#",  "a",        "#EXT",        "#EXTM3U\n",
                                             "a=\"b", ",",  "#EXTINF:", "\xEF\xBB\xBF"};
    for (const std::string& first : pieces) {
        for (const std::string& second : pieces) {
            for (const std::string& third : pieces)
                expectPromises(first + second + third);
        }
    }
}

TEST(VELHLSDocumentPromises, HoldForWholePlaylistsWithEveryLineEnd) {
    for (const std::string& text : corpus()) {
        expectPromises(text);
        expectPromises(text.substr(0, text.size() - 1));
        std::string withReturns;
        for (const char character : text)
            withReturns += character == '\n' ? "\r\n" : std::string(1, character);
        expectPromises(withReturns);
    }
}

TEST(VELHLSDocumentPromises, HoldForMutatedPlaylists) {
    const std::vector<std::string> texts = corpus();
    mutation::Mutator mutator(4242);
    for (int round = 0; round < 400; ++round)
        expectPromises(mutator.mutated(texts));
}

TEST(VELHLSDocumentPromises, HoldForHostileInputs) {
    for (const hostile::Input& input : hostile::inputs()) {
        SCOPED_TRACE(input.name);
        EXPECT_EQ(oracle::DocumentPromises(input.text(64)).broken(), "");
    }
}

bool isAccepted(const std::string& text, VELHLSDiagnostics::PlaylistKind kind) {
    std::istringstream input(text);
    try {
        if (kind == VELHLSDiagnostics::Master)
            return VELHLSParsedManifest::parseManifest(input, nullptr) != nullptr;
        return VELHLSMediaStream::parseMediaStream(input, nullptr) != nullptr;
    } catch (const std::logic_error&) {
        return false;
    }
}

/// Every URI with a query, and an attribute more in every list.
std::string edited(const std::string& text) {
    const VELHLSDocument document(text);
    std::vector<VELHLSEdit> edits;
    for (const VELHLSUri& uri : document.uris()) {
        const bool isOneLine = uri.text.find('\r') == std::string_view::npos;
        if (!uri.text.empty() && isOneLine)
            edits.push_back(document.replaceUri(uri, std::string(uri.text) + "?token=1"));
    }
    return document.apply(edits).text;
}

TEST(VELHLSDocumentPromises, WhatTheModelsAcceptedIsAcceptedWithOtherUris) {
    const std::vector<std::string> texts = corpus();
    mutation::Mutator mutator(7);
    std::size_t accepted = 0;
    for (int round = 0; round < 1500; ++round) {
        const std::string text = mutator.mutated(texts);
        for (const auto kind : {VELHLSDiagnostics::Master, VELHLSDiagnostics::Media}) {
            if (!isAccepted(text, kind)) continue;
            ++accepted;
            EXPECT_TRUE(isAccepted(edited(text), kind)) << text << "\n--- edited:\n" << edited(text);
        }
    }
    EXPECT_GT(accepted, 250U);
}

}  // namespace
