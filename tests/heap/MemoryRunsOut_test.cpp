// Whichever allocation fails, std::bad_alloc is all that leaves the library; nothing is lost, the status is as it was,
// and a playlist that was being written can be written again. Where the standard library does without the memory, the
// result is that of a run with enough of it.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/heap/Heap.h"
#include "tests/support/LibraryFindings.h"
#include "tests/support/MediaRoundTrip.h"
#include "tests/support/WholePlaylists.h"

namespace {

/// Runs the work with memory for no allocation, for one, and so on until all are made, and each time afresh:
/// `State` is made and asked with all the memory there is, and so is released.
///
/// A state has run(), whose allocations fail; outcome(), which is compared; and changed(), which names what must not
/// have changed when std::bad_alloc left run().
template <typename State, typename... Arguments>
void runOutOfMemory(const Arguments&... arguments) {
    const auto whole = std::make_unique<State>(arguments...);
    whole->run();
    const std::string expected = whole->outcome();
    for (const heap::Failure failure : {heap::Failure::once, heap::Failure::fromThereOn}) {
        bool happened = true;
        for (std::size_t granted = 0; happened; ++granted) {
            const std::size_t blocks = heap::blocksInUse();
            auto state = std::make_unique<State>(arguments...);
            bool ranOut = false;
            {
                const heap::RunsOut memory(granted, failure);
                try {
                    state->run();
                } catch (const std::bad_alloc&) {
                    ranOut = true;
                }
                happened = memory.happened();
            }
            if (ranOut) {
                ASSERT_EQ(state->changed(), "") << "after " << granted << " allocations";
            } else {
                ASSERT_EQ(state->outcome(), expected) << "after " << granted << " allocations";
            }
            state = nullptr;
            ASSERT_EQ(heap::blocksInUse(), blocks) << "after " << granted << " allocations";
        }
    }
}

/// Calls that throw for the text's own sake are compared by what they throw.
template <typename Call>
const std::type_info* thrownBy(Call call) {
    try {
        call();
    } catch (const std::logic_error& error) {
        return &typeid(error);
    }
    return nullptr;
}

/// A stream over a text that shows a piece of it at a time, as a file does: lines that are cut by its end are put
/// together in memory. Makes no allocation itself.
class Pieces : private std::streambuf, public std::istream {
  public:
    Pieces(const std::string& text, std::size_t size)
        : std::istream(static_cast<std::streambuf*>(this)), text_(text), size_(size) {}

  protected:
    std::streambuf::int_type underflow() override {
        const std::size_t length = std::min(size_, text_.size() - position_);
        if (length == 0) return std::streambuf::traits_type::eof();
        char* const start = text_.data() + position_;
        position_ += length;
        setg(start, start, start + length);
        return std::streambuf::traits_type::to_int_type(*start);
    }

  private:
    std::string text_;
    std::size_t size_;
    std::size_t position_ = 0;
};

constexpr std::size_t smallPiece = 100;
constexpr std::size_t pieceOfAll = 1U << 20U;

template <typename Playlist>
std::string renderedOf(const std::shared_ptr<Playlist>& playlist) {
    if (playlist == nullptr) return "rejected";
    std::ostringstream text;
    EXPECT_EQ(playlist->render(text), 0);
    return text.str();
}

constexpr auto errorBefore = static_cast<VELHLSParsingError>(7);
constexpr double durationBefore = -42.0;

template <typename Playlist, std::shared_ptr<Playlist> (*parse)(std::istream&, VELHLSParsingStatus*)>
class Parse {
  public:
    Parse(const std::string& text, std::size_t size, bool hasMetrics) : input_(text, size) {
        status_.error = errorBefore;
        status_.message = "the message of the parse before this one";
        if (hasMetrics) status_.metrics = std::make_shared<VELHLSParsingMetrics>();
        if (hasMetrics) status_.metrics->parseDuration = durationBefore;
        metricsBefore_ = status_.metrics.get();
    }

    void run() {
        thrown_ = thrownBy([this] { playlist_ = parse(input_, &status_); });
    }

    [[nodiscard]] std::string outcome() const {
        std::ostringstream text;
        text << (thrown_ == nullptr ? renderedOf(playlist_) : thrown_->name()) << "\nerror " << status_.error
             << ", message " << status_.message << ", patterns " << status_.hasMediaPatterns << ", metrics "
             << (status_.metrics != nullptr && status_.metrics->parseDuration >= 0.0);
        return text.str();
    }

    [[nodiscard]] std::string changed() const {
        if (playlist_ != nullptr) return "the result";
        if (status_.error != errorBefore) return "the error";
        if (status_.message != "the message of the parse before this one") return "the message";
        if (status_.metrics.get() != metricsBefore_) return "the metrics";
        if (metricsBefore_ != nullptr && metricsBefore_->parseDuration != durationBefore)
            return "the duration";
        return "";
    }

  private:
    Pieces input_;
    VELHLSParsingStatus status_;
    const VELHLSParsingMetrics* metricsBefore_ = nullptr;
    std::shared_ptr<Playlist> playlist_;
    const std::type_info* thrown_ = nullptr;
};

using ParseMaster = Parse<VELHLSParsedManifest, VELHLSParsedManifest::parseManifest>;
using ParseMedia = Parse<VELHLSMediaStream, VELHLSMediaStream::parseMediaStream>;

template <typename State>
void runOutOfMemoryInEveryWay(const std::string& text) {
    SCOPED_TRACE(text);
    runOutOfMemory<State>(text, pieceOfAll, false);
    runOutOfMemory<State>(text, pieceOfAll, true);
    runOutOfMemory<State>(text, smallPiece, false);
}

TEST(MemoryRunsOut, ParsingAMasterPlaylist) {
    runOutOfMemoryInEveryWay<ParseMaster>(whole::master);
    for (const std::string& text : whole::rejectedMasters)
        runOutOfMemoryInEveryWay<ParseMaster>(text);
}

TEST(MemoryRunsOut, ParsingAMediaPlaylist) {
    runOutOfMemoryInEveryWay<ParseMedia>(whole::media);
    for (const std::string& text : whole::rejectedMedia)
        runOutOfMemoryInEveryWay<ParseMedia>(text);
}

/// The findings of a text, from a string and from a stream.
class Check {
  public:
    Check(const std::string& text, VELHLSDiagnostics::PlaylistKind kind)
        : text_(text), input_(text, smallPiece), kind_(kind) {}

    void run() {
        findings_ = library::findingsIn(text_, kind_);
        findingsOfStream_ = VELHLSDiagnostics::check(input_, library::optionsFor(kind_)).findings;
    }

    [[nodiscard]] std::string outcome() const { return told(findings_) + told(findingsOfStream_); }
    [[nodiscard]] std::string changed() const { return findingsOfStream_.empty() ? "" : "the result"; }

  private:
    static std::string told(const std::vector<VELHLSFinding>& findings) {
        std::ostringstream text;
        for (const VELHLSFinding& finding : findings) {
            text << finding.line << ":" << finding.column << "+" << finding.length << ": " << finding.message
                 << " [" << finding.ruleId << "]\n";
        }
        return text.str();
    }

    std::string text_;
    Pieces input_;
    VELHLSDiagnostics::PlaylistKind kind_;
    std::vector<VELHLSFinding> findings_;
    std::vector<VELHLSFinding> findingsOfStream_;
};

/// A document, its structure, its URIs, and an edit of each of its lines.
class Edit {
  public:
    explicit Edit(const std::string& text) : text_(text) {}

    void run() {
        const VELHLSDocument document(text_);
        const VELHLSStructure structure(document);
        std::vector<VELHLSEdit> edits;
        for (const VELHLSUri& uri : document.uris())
            edits.push_back(document.replaceUri(uri, "https://example.com/a-longer-uri-than-before"));
        for (const VELHLSLine& line : document.linesNamed("EXT-X-KEY"))
            edits.push_back(
                document.changeAttributes(line.number, {{"KEYFORMATVERSIONS", "1/2/3/4/5/6/7/8/9"}}));
        edits.push_back(document.insertBefore(1, "# a line that is too long for a small string"));
        for (const VELHLSStructure::Segment segment : structure.segments())
            edits.push_back(document.insertAfter(structure.linesOf(segment).back(), "# after a segment"));
        edited_ = document.apply(edits).text;
    }

    [[nodiscard]] std::string outcome() const { return edited_; }
    [[nodiscard]] std::string changed() const { return edited_.empty() ? "" : "the result"; }

  private:
    std::string text_;
    std::string edited_;
};

/// Two versions that differ in their numbers.
class Compare {
  public:
    explicit Compare(const std::string& text) : text_(text), next_(text) {
        std::replace(next_.begin(), next_.end(), '1', '2');
    }

    void run() {
        auto comparison = VELHLSComparison::compare(VELHLSDocument(text_), VELHLSDocument(next_), {9.0});
        changes_ = std::move(comparison.value().changes);
        findings_ = std::move(comparison.value().findings);
    }

    [[nodiscard]] std::string outcome() const {
        std::string text;
        for (const VELHLSChange& change : changes_)
            text += change.path + change.what + change.oldText + change.newText;
        for (const VELHLSFinding& finding : findings_)
            text += finding.message;
        return text;
    }
    [[nodiscard]] std::string changed() const { return changes_.empty() ? "" : "the result"; }

  private:
    std::string text_;
    std::string next_;
    std::vector<VELHLSChange> changes_;
    std::vector<VELHLSFinding> findings_;
};

TEST(MemoryRunsOut, ComparingTwoVersions) {
    runOutOfMemory<Compare>(whole::master);
    runOutOfMemory<Compare>(whole::media);
}

/// A parse of a document, and the lines of its records.
class FindLines {
  public:
    explicit FindLines(const std::string& text) : document_(text) {}

    void run() {
        const auto manifest = lines_.parseManifest(document_);
        if (manifest != nullptr) line_ = lines_.of(*manifest->streamVariants.back())->first;
        const auto stream = lines_.parseMediaStream(document_);
        if (stream != nullptr) line_ = lines_.of(*stream->segments.back())->first;
    }

    [[nodiscard]] std::string outcome() const { return std::to_string(line_); }
    [[nodiscard]] static std::string changed() { return ""; }

  private:
    VELHLSDocument document_;
    VELHLSRecordLines lines_;
    std::size_t line_ = 0;
};

TEST(MemoryRunsOut, FindingTheLinesOfRecords) {
    runOutOfMemory<FindLines>(whole::master);
    runOutOfMemory<FindLines>(whole::media);
}

TEST(MemoryRunsOut, EditingADocument) {
    runOutOfMemory<Edit>(whole::master);
    runOutOfMemory<Edit>(whole::media);
}

TEST(MemoryRunsOut, CheckingAMasterPlaylist) {
    runOutOfMemory<Check>(whole::master, VELHLSDiagnostics::Master);
    for (const std::string& text : whole::rejectedMasters) {
        SCOPED_TRACE(text);
        if (text.size() < smallPiece * smallPiece / 100)
            runOutOfMemory<Check>(text, VELHLSDiagnostics::Master);
    }
    runOutOfMemory<Check>(whole::rejectedMasters[3], VELHLSDiagnostics::Detect);
}

TEST(MemoryRunsOut, CheckingAMediaPlaylist) {
    runOutOfMemory<Check>(whole::media, VELHLSDiagnostics::Media);
    for (const std::string& text : whole::rejectedMedia) {
        SCOPED_TRACE(text);
        runOutOfMemory<Check>(text, VELHLSDiagnostics::Media);
        runOutOfMemory<Check>(text, VELHLSDiagnostics::Detect);
    }
}

/// A stream that keeps what it is given in memory that is there from the start.
class Kept : private std::streambuf, public std::ostream {
  public:
    Kept() : std::ostream(static_cast<std::streambuf*>(this)) {
        setp(text_.data(), text_.data() + text_.size());
    }
    [[nodiscard]] std::string text() const { return {pbase(), pptr()}; }

  private:
    std::array<char, 1U << 14U> text_;
};

template <typename Playlist>
class Render {
  public:
    explicit Render(const std::shared_ptr<const Playlist>& playlist)
        : playlist_(playlist), textBefore_(renderedOf(playlist)) {}

    void run() {
        isValid_ = playlist_->validate();
        status_ = playlist_->render(out_);
    }

    [[nodiscard]] std::string outcome() const {
        const bool isWhole = isValid_ && status_ == 0 && out_.good() && renderedOf(playlist_) == textBefore_;
        return (isWhole ? "" : "not whole:\n") + out_.text();
    }

    /// The stream holds the front of the text, and nothing that does not belong there.
    [[nodiscard]] std::string changed() const {
        if (renderedOf(playlist_) != textBefore_) return "the playlist";
        return textBefore_.compare(0, out_.text().size(), out_.text()) == 0 && out_.good() ? ""
                                                                                           : "the stream";
    }

  private:
    std::shared_ptr<const Playlist> playlist_;
    std::string textBefore_;
    Kept out_;
    bool isValid_ = false;
    std::int32_t status_ = -2;
};

std::shared_ptr<const VELHLSParsedManifest> wholeMaster() {
    std::istringstream input(whole::master);
    return VELHLSParsedManifest::parseManifest(input, nullptr);
}

std::shared_ptr<const VELHLSMediaStream> wholeMedia() {
    return playlist::parsedMedia(whole::media);
}

TEST(MemoryRunsOut, RenderingAMasterPlaylist) {
    runOutOfMemory<Render<VELHLSParsedManifest>>(wholeMaster());
}

TEST(MemoryRunsOut, RenderingAMediaPlaylist) {
    runOutOfMemory<Render<VELHLSMediaStream>>(wholeMedia());
}

template <typename Playlist>
std::string writtenOf(const std::shared_ptr<const Playlist>& playlist) {
    std::ostringstream out;
    const auto refusal = VELHLSPlaylistWriter::write(*playlist, out);
    return refusal ? "refused: " + *refusal : out.str();
}

template <typename Playlist>
class Write {
  public:
    explicit Write(const std::shared_ptr<const Playlist>& playlist)
        : playlist_(playlist), textBefore_(writtenOf(playlist)) {}

    void run() { refusal_ = VELHLSPlaylistWriter::write(*playlist_, out_); }

    [[nodiscard]] std::string outcome() const {
        const bool isWhole = !refusal_ && out_.good() && writtenOf(playlist_) == textBefore_;
        return (isWhole ? "" : "not whole:\n") + out_.text();
    }

    /// All is put together before the first byte is written.
    [[nodiscard]] std::string changed() const {
        if (writtenOf(playlist_) != textBefore_) return "the playlist";
        return out_.text().empty() && out_.good() ? "" : "the stream";
    }

  private:
    std::shared_ptr<const Playlist> playlist_;
    std::string textBefore_;
    Kept out_;
    std::optional<std::string> refusal_;
};

TEST(MemoryRunsOut, WritingAMasterPlaylist) {
    runOutOfMemory<Write<VELHLSParsedManifest>>(wholeMaster());
}

TEST(MemoryRunsOut, WritingAMediaPlaylist) {
    runOutOfMemory<Write<VELHLSMediaStream>>(wholeMedia());
}

/// What std::bad_alloc means to a stream that has to grow is for the stream to say: a std::ostringstream takes it for a
/// reason to be bad, and what it holds is then the front of the text.
TEST(MemoryRunsOut, RenderingIntoAStreamThatGrows) {
    const auto stream = wholeMedia();
    const std::string expected = renderedOf(stream);
    bool happened = true;
    for (std::size_t granted = 0; happened; ++granted) {
        std::ostringstream out;
        {
            const heap::RunsOut memory(granted, heap::Failure::once);
            try {
                static_cast<void>(stream->render(out));
            } catch (const std::bad_alloc&) {
            }
            happened = memory.happened();
        }
        const std::string text = out.str();
        if (out.good() && text.size() == expected.size()) continue;
        ASSERT_TRUE(happened);
        ASSERT_EQ(text, expected.substr(0, text.size()));
    }
    EXPECT_EQ(renderedOf(stream), expected);
}

/// Records append to a text. What stood in it stays before them.
template <typename Record>
class RenderRecord {
  public:
    explicit RenderRecord(const Record& record) : record_(record) {}

    void run() { status_ = render(record_, text_); }
    [[nodiscard]] std::string outcome() const { return std::to_string(status_) + text_; }
    [[nodiscard]] std::string changed() const {
        std::string again = before;
        const bool isWhole = render(record_, again) == 0 && again.size() > before.size();
        if (!isWhole) return "the record";
        return again.compare(0, text_.size(), text_) == 0 && text_.size() >= before.size() ? "" : "the text";
    }

  private:
    inline static const std::string before = "what stood in the text before it was given\n";

    template <typename Any>
    static std::int32_t render(const Any& record, std::string& text) {
        return record.render(text);
    }
    static std::int32_t render(const VELHLSMediaSegment& segment, std::string& text) {
        return segment.render(text, true, true);
    }

    const Record& record_;
    std::string text_ = before;
    std::int32_t status_ = -2;
};

template <typename Record>
void renderRecord(const Record& record) {
    runOutOfMemory<RenderRecord<Record>>(record);
}

TEST(MemoryRunsOut, RenderingEachRecord) {
    const auto manifest = wholeMaster();
    for (const auto& [bandwidth, variant] : manifest->variants)
        renderRecord(*variant);
    for (const auto& [type, groups] : manifest->renditions) {
        for (const auto& [groupId, group] : groups)
            renderRecord(*group.begin()->second);
    }
    for (const auto& entry : manifest->sessionData)
        renderRecord(*entry);
    for (const auto& key : manifest->sessionKeys)
        renderRecord(*key);
    const auto stream = wholeMedia();
    for (const auto& segment : stream->segments)
        renderRecord(*segment);
    renderRecord(*stream->segments.front()->protectionData);
    renderRecord(*stream->segments.front()->misMap);
    renderRecord(*stream->segments.front()->byteRange);
}

/// The other calls that take memory: whatever they give is an outcome, and nothing is to be left unchanged.
template <std::string (*call)()>
struct Call {
    void run() { result = call(); }
    [[nodiscard]] std::string outcome() const { return result; }
    [[nodiscard]] std::string changed() const { return result; }
    std::string result;
};

std::string substituted() {
    auto defines = std::make_shared<VELHLSDefineMap>();
    (*defines)["a-name-that-is-long-enough"] = "{$another-name-that-is-long}{$another-name-that-is-long}";
    (*defines)["another-name-that-is-long"] = "a value that is long enough to need memory";
    return VELHLSUtility::substituteVariables("before {$a-name-that-is-long-enough} after", defines);
}

std::string attributes() {
    std::string text;
    for (char name = 'A'; name <= 'Z'; ++name)
        text +=
            std::string(text.empty() ? "" : ",") + name + "=\"a value that is long enough to need memory\"";
    return VELHLSUtility::parseAttributeMap(text)->at("Z");
}

std::string expanded() {
    auto defines = std::make_shared<VELHLSDefineMap>();
    (*defines)["the-number-of-the-segment"] = "9";
    const VELHLSMediaPattern pattern("a-pattern-of-the-day",
                                     "#EXTINF:6,\nthe/segments/{$the-number-of-the-segment}.mp4\n"
                                     "#ZOR-DEFINE_INCREMENT:the-number-of-the-segment,1\n",
                                     5);
    const std::string text = pattern.expandMediaPattern(defines)->str();
    const auto segments = pattern.createMediaSegments(nullptr, 0, 0, defines, nullptr);
    return text + segments->back()->uri;
}

std::string extended() {
    const auto first =
        std::make_shared<VELHLSMediaSegment>(6.0, 0.0, 0, 0, "", nullptr, false, 1.0, nullptr, nullptr,
                                             "the/segments/of/the/day/0001.mp4", false, "", "");
    return VELHLSMediaSegment::buildNextSegment(first, 6.0, nullptr, "the/segments/of/the/day/0002.mp4")->uri;
}

std::string timestamps() {
    std::string text = "a date and a time, after more than fits inside: ";
    VELHLSUtility::renderTimestamp(VELHLSUtility::parseTimestamp("2020-01-01T10:00:05.250Z"), text);
    return text +
           VELHLSUtility::lastPathComponentFromURI("https://example.com/the/last/part-of-the-path.mp4");
}

std::string rules() {
    return std::to_string(library::rules().size()) +
           std::string(VELHLSDiagnostics::ruleNamed("variant-bandwidth-missing")->summary);
}

std::string patternRead() {
    std::istringstream prefix("#EXTINF:6,\n#EXT-X-KEY:METHOD=NONE\n");
    std::istringstream input(
        "the/segments/of/the/day/0001.mp4\n#ZOR-PATTERN_REPEAT:a-pattern-of-the-day,3\nafter\n");
    return VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:a-pattern-of-the-day", prefix, input,
                                                 nullptr)
        ->body;
}

TEST(MemoryRunsOut, EveryOtherCall) {
    runOutOfMemory<Call<substituted>>();
    runOutOfMemory<Call<attributes>>();
    runOutOfMemory<Call<expanded>>();
    runOutOfMemory<Call<extended>>();
    runOutOfMemory<Call<timestamps>>();
    runOutOfMemory<Call<rules>>();
    runOutOfMemory<Call<patternRead>>();
}

/// All that may change in the status when std::bad_alloc leaves a parse is that a pattern was seen.
TEST(MemoryRunsOut, TheNoteOfAPatternMayStay) {
    const std::string text = "#EXTINF:6,\n#ZOR-PATTERN_END:an end of a pattern that never began\n";
    bool noted = false;
    bool happened = true;
    for (std::size_t granted = 0; happened; ++granted) {
        std::istringstream input(text);
        VELHLSParsingStatus status;
        const heap::RunsOut memory(granted, heap::Failure::once);
        try {
            static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status));
        } catch (const std::bad_alloc&) {
            noted = noted || status.hasMediaPatterns;
        }
        happened = memory.happened();
    }
    EXPECT_TRUE(noted);
}

TEST(MemoryRunsOut, WhatIsCalledRejectedIs) {
    for (const std::string& text : whole::rejectedMasters) {
        ParseMaster parse(text, pieceOfAll, false);
        parse.run();
        EXPECT_EQ(parse.outcome().find("#EXT"), std::string::npos) << text;
    }
    for (const std::string& text : whole::rejectedMedia) {
        ParseMedia parse(text, pieceOfAll, false);
        parse.run();
        EXPECT_EQ(parse.outcome().find("#EXTM3U"), std::string::npos) << text;
    }
}

/// The heap of these tests notices what it is there to notice.
TEST(MemoryRunsOut, TheHeapCountsAndFailsInAllForms) {
    const std::size_t blocks = heap::blocksInUse();
    const std::size_t bytes = heap::bytesInUse();
    // Called by their names, since a compiler may leave out what a new-expression allocates.
    void* const block = ::operator new(1000);
    EXPECT_EQ(heap::blocksInUse(), blocks + 1);
    // With what malloc adds.
    EXPECT_GT(heap::bytesInUse(), bytes + 1000);
    EXPECT_LT(heap::bytesInUse(), bytes + 1100);
    ::operator delete(block);
    EXPECT_EQ(heap::blocksInUse(), blocks);
    EXPECT_EQ(heap::bytesInUse(), bytes);

    constexpr std::align_val_t alignment{128};
    for (const heap::Failure failure : {heap::Failure::once, heap::Failure::fromThereOn}) {
        const heap::RunsOut memory(0, failure);
        EXPECT_EQ(::operator new(1, std::nothrow), nullptr);
        void* const next = ::operator new(1, std::nothrow);
        EXPECT_EQ(next == nullptr, failure == heap::Failure::fromThereOn);
        ::operator delete(next);
    }
    bool threw = false;
    {
        const heap::RunsOut memory(0, heap::Failure::once);
        try {
            static_cast<void>(::operator new(128, alignment));
        } catch (const std::bad_alloc&) {
            threw = true;
        }
    }
    EXPECT_TRUE(threw);
    void* const aligned = ::operator new(128, alignment);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(aligned) % static_cast<std::size_t>(alignment), 0U);
    ::operator delete(aligned, alignment);
}

}  // namespace
