// How much memory is held at most, for each byte of a text that was made to be costly and of what comes out of it.
// benchmarks/cost measures the same, and more of it.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/heap/Heap.h"
#include "tests/hostile/HostileInputs.h"
#include "tests/support/LibraryFindings.h"
#include "tests/support/Parses.h"

namespace {

constexpr double mostOfParse = 24.0;
constexpr double mostOfRender = 2.5;
constexpr double mostOfWrite = 3.0;
constexpr double mostOfCheck = 32.0;
constexpr double mostOfRecordLines = 32.0;
/// Beside the text itself, which it owns.
constexpr double mostOfDocument = 24.0;
/// Of two documents, beside these.
constexpr double mostOfComparison = 128.0;
/// Of the texts of a presentation, beside their documents, and so many bytes for each text.
constexpr double mostOfPresentation = 48.0;
constexpr double mostOfPresentationText = 8192.0;

struct Memory {
    std::size_t held = 0;
    std::size_t most = 0;
};

Memory memoryOf(const std::function<void()>& work) {
    const std::size_t before = heap::bytesInUse();
    heap::forgetTheMost();
    try {
        work();
    } catch (const std::logic_error&) {
        // Numbers that are none are rejected by throwing.
    }
    return {heap::bytesInUse() - before, heap::mostBytesInUse() - before};
}

double multiple(const Memory& memory, std::size_t whole) {
    return static_cast<double>(memory.most) / static_cast<double>(whole);
}

/// Another version of the text, in which as much as can be has changed.
std::string nextVersion(std::string text) {
    std::replace(text.begin(), text.end(), '1', '2');
    std::replace(text.begin(), text.end(), 's', 't');
    return text;
}

template <typename Parse>
void expectBoundedMemory(const hostile::Input& input, Parse parse) {
    const std::string text = input.text(input.size);
    std::istringstream stream(text);
    decltype(parse(stream, nullptr)) playlist;
    const Memory parsed = memoryOf([&] { playlist = parse(stream, nullptr); });
    EXPECT_LE(multiple(parsed, text.size() + parsed.held), mostOfParse);

    std::unique_ptr<VELHLSDocument> document;
    std::unique_ptr<VELHLSStructure> structure;
    const Memory understood = memoryOf([&] {
        document = std::make_unique<VELHLSDocument>(text);
        structure = std::make_unique<VELHLSStructure>(*document);
    });
    EXPECT_LE(multiple(understood, text.size()), 1.0 + mostOfDocument);

    const VELHLSDocument next(nextVersion(text));
    std::optional<VELHLSComparison> comparison;
    const Memory compared = memoryOf([&] { comparison = VELHLSComparison::compare(*document, next, {9.0}); });
    EXPECT_LE(multiple(compared, 2 * text.size()), mostOfComparison);

    VELHLSRecordLines lines;
    const Memory placed = memoryOf([&] {
        if (input.kind == VELHLSDiagnostics::Master) {
            static_cast<void>(lines.parseManifest(*document));
        } else {
            static_cast<void>(lines.parseMediaStream(*document));
        }
    });
    EXPECT_LE(multiple(placed, text.size() + parsed.held), mostOfRecordLines);

    std::vector<VELHLSFinding> findings;
    const Memory checked = memoryOf([&] { findings = library::findingsIn(text, input.kind); });
    EXPECT_LE(multiple(checked, text.size() + parsed.held), mostOfCheck);
    if (playlist == nullptr) return;

    std::ostringstream out;
    const Memory rendered = memoryOf([&] { EXPECT_EQ(playlist->render(out), 0); });
    EXPECT_LE(multiple(rendered, text.size() + rendered.held), mostOfRender);

    std::ostringstream other;
    const Memory written =
        memoryOf([&] { static_cast<void>(VELHLSPlaylistWriter::write(*playlist, other)); });
    EXPECT_LE(multiple(written, text.size() + written.held), mostOfWrite);
}

TEST(PeakMemory, IsAMultipleOfTheTextAndOfWhatComesOutOfIt) {
    for (const hostile::Input& input : hostile::inputs()) {
        SCOPED_TRACE(input.name);
        if (input.kind == VELHLSDiagnostics::Master) {
            expectBoundedMemory(input, playlist::parseMaster);
        } else {
            expectBoundedMemory(input, playlist::parseMedia);
        }
    }
}

/// Each hostile text as the master playlist, and as one of two media playlists.
TEST(PeakMemory, OfAPresentationIsAMultipleOfItsTexts) {
    const VELHLSDocument twoVariants("#EXTM3U\n#EXT-X-STREAM-INF:\na\n#EXT-X-STREAM-INF:\nb\n");
    const VELHLSDocument small("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\na.ts\n");
    for (const hostile::Input& input : hostile::inputs()) {
        SCOPED_TRACE(input.name);
        const VELHLSDocument document(input.text(input.size));
        for (const VELHLSDocument* const master : {&twoVariants, &document}) {
            const VELHLSDocument* const other = master == &document ? &small : &document;
            const Memory memory = memoryOf([&] {
                static_cast<void>(VELHLSPresentation::check(
                    {"\n", master, {}}, {{"a", other, {}}, {"b", &small, {}}},
                    {VELHLSStandard::Profile::rfc8216, VELHLSStandard::Profile::apple}));
            });
            const double texts = static_cast<double>(document.text().size());
            EXPECT_LE(static_cast<double>(memory.most),
                      mostOfPresentation * texts + 3.0 * mostOfPresentationText);
        }
    }
}

/// The bounds are no invitation: what holds every front of a text goes far beyond them.
TEST(PeakMemory, ThatGrowsWithTheSquareIsNoticed) {
    const std::string text = hostile::times(hostile::manyRecords, "line\n");
    const Memory memory = memoryOf([&] {
        std::vector<std::string> fronts;
        for (std::size_t length = 0; length < text.size(); ++length)
            fronts.push_back(text.substr(0, length));
    });
    EXPECT_GT(multiple(memory, text.size() + memory.held), 2.0 * mostOfCheck);
}

/// What a parse holds of a segment, beside its text: what the memory of a service is planned by.
TEST(PeakMemory, OfAModelIsAMultipleOfTheTextWithoutPatterns) {
    constexpr double mostOfModel = 16.0;
    for (const hostile::Input& input : hostile::inputs()) {
        const std::string text = input.text(input.size);
        if (input.kind != VELHLSDiagnostics::Media || text.find("#ZOR-PATTERN_START") != std::string::npos)
            continue;
        SCOPED_TRACE(input.name);
        std::istringstream stream(text);
        std::shared_ptr<VELHLSMediaStream> playlist;
        const Memory memory =
            memoryOf([&] { playlist = VELHLSMediaStream::parseMediaStream(stream, nullptr); });
        EXPECT_LE(static_cast<double>(memory.held), mostOfModel * static_cast<double>(text.size()));
    }
}

}  // namespace
