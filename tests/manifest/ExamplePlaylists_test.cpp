#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/manifest/ManifestDescription.h"
#include "tests/support/PlaylistText.h"

// The master playlists among the examples: what the project shows its users, it reads and writes itself.

namespace {

using Rendition = VELHLSMediaStreamRendition;

struct Example {
    std::string fileName;
    std::string text;
};

bool isMasterPlaylist(const std::filesystem::path& path) {
    return path.extension() == ".m3u8" && path.filename().string().rfind("master", 0) == 0;
}

std::vector<Example> masterPlaylists() {
    std::vector<Example> examples;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_EXAMPLE_PLAYLISTS)) {
        if (!isMasterPlaylist(entry.path())) continue;
        examples.push_back({entry.path().filename().string(), playlist::contentOf(entry.path().string())});
    }
    std::sort(examples.begin(), examples.end(),
              [](const Example& left, const Example& right) { return left.fileName < right.fileName; });
    return examples;
}

std::shared_ptr<VELHLSParsedManifest> parsed(const std::string& text) {
    std::istringstream input(text);
    return VELHLSParsedManifest::parseManifest(input, nullptr);
}

template <typename Record>
std::string rendered(const Record& record) {
    std::string text;
    EXPECT_EQ(record.render(text), 0);
    return text;
}

std::string rendered(const VELHLSParsedManifest& manifest) {
    std::ostringstream out;
    EXPECT_EQ(manifest.render(out), 0);
    return out.str();
}

/// The line less its end.
std::string lineOf(const std::string& text) {
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\n');
    return text.substr(0, text.size() - 1);
}

/// Calls `look` with each example that parses; one that does not fails.
template <typename Look>
void forEachManifest(Look look) {
    for (const Example& example : masterPlaylists()) {
        SCOPED_TRACE(example.fileName);
        const auto manifest = parsed(example.text);
        ASSERT_NE(manifest, nullptr);
        look(*manifest);
    }
}

template <typename Look>
void forEachRendition(const VELHLSParsedManifest& manifest, Look look) {
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group) {
                look(*rendition);
            }
        }
    }
}

/// A variant's tag line, and its URI line: empty for an I-frame variant.
std::shared_ptr<VELHLSMediaVariant> variantParsed(const std::string& text) {
    const std::size_t lineEnd = text.find('\n');
    const std::string rest = text.substr(lineEnd + 1);
    return VELHLSMediaVariant::parseVariant(text.substr(0, lineEnd), rest.empty() ? rest : lineOf(rest));
}

TEST(ExamplePlaylists, HoldMasterPlaylists) {
    const std::vector<Example> examples = masterPlaylists();
    ASSERT_FALSE(examples.empty()) << VELHLS_EXAMPLE_PLAYLISTS;
    for (const Example& example : examples) {
        EXPECT_FALSE(example.text.empty()) << example.fileName;
    }
}

TEST(ExamplePlaylists, MasterPlaylistsParseAndValidate) {
    for (const Example& example : masterPlaylists()) {
        SCOPED_TRACE(example.fileName);
        std::istringstream input(example.text);
        VELHLSParsingStatus status;
        const auto manifest = VELHLSParsedManifest::parseManifest(input, &status);
        ASSERT_NE(manifest, nullptr);
        EXPECT_EQ(status.error, VELHLSParsingErrorNone);
        EXPECT_TRUE(manifest->validate());
        EXPECT_TRUE(manifest->hasHeader);
        EXPECT_FALSE(manifest->variants.empty());
    }
}

TEST(ExamplePlaylists, MasterPlaylistsRenderStably) {
    forEachManifest([](const VELHLSParsedManifest& manifest) {
        const std::string written = rendered(manifest);
        const auto again = parsed(written);
        if (!manifest.sessionData.empty()) {
            EXPECT_EQ(again, nullptr) << "session data is not read back in its written order";
            return;
        }
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(rendered(*again), written);
    });
}

TEST(ExamplePlaylists, RenditionsComeBackFromTheirText) {
    forEachManifest([](const VELHLSParsedManifest& manifest) {
        forEachRendition(manifest, [](const Rendition& rendition) {
            const std::string text = rendered(rendition);
            const auto again = Rendition::parse(lineOf(text));
            ASSERT_NE(again, nullptr) << text;
            EXPECT_EQ(rendered(*again), text);
            again->audioTrackType = rendition.audioTrackType;  // it is never written
            EXPECT_EQ(playlist::describe(*again), playlist::describe(rendition));
        });
    });
}

TEST(ExamplePlaylists, VariantsComeBackFromTheirText) {
    forEachManifest([](const VELHLSParsedManifest& manifest) {
        for (const auto& [bandwidth, variant] : manifest.variants) {
            const std::string text = rendered(*variant);
            const auto again = variantParsed(text);
            ASSERT_NE(again, nullptr) << text;
            EXPECT_EQ(rendered(*again), text);
            again->nominalVideoBitrate = variant->nominalVideoBitrate;  // they stand in a tag of their own
            again->nominalAudioBitrate = variant->nominalAudioBitrate;
            EXPECT_EQ(playlist::describe(*again), playlist::describe(*variant));
        }
    });
}

TEST(ExamplePlaylists, SessionKeysComeBackFromTheirText) {
    forEachManifest([](const VELHLSParsedManifest& manifest) {
        for (const auto& key : manifest.sessionKeys) {
            const std::string text = rendered(*key);
            VELHLSProtectionData again(VELHLSProtectionData::None, "", "", "", {});
            ASSERT_EQ(again.parse(lineOf(text)), 0) << text;
            EXPECT_EQ(rendered(again), text);
            EXPECT_EQ(playlist::describe(again), playlist::describe(*key));
        }
    });
}

TEST(ExamplePlaylists, SessionDataRendersToWhatTheLibraryDoesNotReadBack) {
    forEachManifest([](const VELHLSParsedManifest& manifest) {
        for (const auto& entry : manifest.sessionData) {
            const std::string text = rendered(*entry);
            EXPECT_EQ(VELHLSManifestSessionData::parseSessionData(lineOf(text)), nullptr) << text;
        }
    });
}

}  // namespace
