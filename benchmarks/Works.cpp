#include "Works.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "Inputs.h"

namespace {

using Stream = std::shared_ptr<VELHLSMediaStream>;
using Manifest = std::shared_ptr<VELHLSParsedManifest>;

void require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

/// A stream over the same text for every run. Where `fresh` is set, making it is part of the run.
class Reading : public Work {
  public:
    Reading(const std::string& text, bool fresh) : text_(text), fresh_(fresh) {}

    void prepare() override {
        if (!fresh_) input_ = std::make_unique<std::istringstream>(text_);
    }

    void run() override {
        if (fresh_) {
            std::istringstream input(text_);
            read(input);
        } else {
            read(*input_);
        }
    }

  private:
    virtual void read(std::istream& input) = 0;

    std::string text_;
    bool fresh_;
    std::unique_ptr<std::istringstream> input_;
};

class ParseMedia : public Reading {
  public:
    ParseMedia(const std::string& text, bool fresh, std::size_t segments)
        : Reading(text, fresh), segments_(segments) {}

    void drop() override {
        require(stream_ != nullptr && stream_->segments.size() == segments_, "the parse lost segments");
        stream_ = nullptr;
    }

  private:
    void read(std::istream& input) override { stream_ = VELHLSMediaStream::parseMediaStream(input, nullptr); }

    std::size_t segments_;
    Stream stream_;
};

class ParseMaster : public Reading {
  public:
    ParseMaster(const std::string& text, bool fresh, std::size_t variants)
        : Reading(text, fresh), variants_(variants) {}

    void drop() override {
        require(manifest_ != nullptr && manifest_->variants.size() == variants_, "the parse lost variants");
        manifest_ = nullptr;
    }

  private:
    void read(std::istream& input) override {
        manifest_ = VELHLSParsedManifest::parseManifest(input, nullptr);
    }

    std::size_t variants_;
    Manifest manifest_;
};

class ReadingFloor : public Reading {
  public:
    using Reading::Reading;

    void drop() override {
        require(bytes_ > 0, "nothing was read");
        bytes_ = 0;
    }

  private:
    void read(std::istream& input) override {
        std::string line;
        while (std::getline(input, line))
            bytes_ += line.size() + 1;
    }

    std::size_t bytes_ = 0;
};

class ObjectFloor : public Reading {
  public:
    ObjectFloor(const std::string& text, bool fresh, std::size_t segments)
        : Reading(text, fresh), segmentCount_(segments) {}

    void drop() override {
        require(segments_.size() == segmentCount_, "the floor lost segments");
        segments_ = {};
    }

  private:
    void read(std::istream& input) override {
        segments_ = {};
        std::string line;
        while (std::getline(input, line)) {
            if (line.empty() || line[0] == '#') continue;
            segments_.push_back(std::make_shared<VELHLSMediaSegment>(0.0, 0.0, 0, 0, "", nullptr, false, 0.0,
                                                                     nullptr, nullptr, line, false, "", ""));
        }
    }

    std::size_t segmentCount_;
    std::vector<std::shared_ptr<VELHLSMediaSegment>> segments_;
};

/// Renders a playlist into a new string stream.
template <typename Playlist>
class Render : public Work {
  public:
    Render(Playlist playlist, std::string expected)
        : playlist_(std::move(playlist)), expected_(std::move(expected)) {}

    void prepare() override { output_ = std::make_unique<std::ostringstream>(); }
    void run() override { result_ = playlist_->render(*output_); }
    void drop() override {
        require(result_ == 0 && output_->str() == expected_, "the text is not what it was");
        output_ = nullptr;
    }

  private:
    Playlist playlist_;
    std::string expected_;
    std::unique_ptr<std::ostringstream> output_;
    std::int32_t result_ = -1;
};

/// Writes a playlist as RFC 8216 wants it into a new string stream.
template <typename Playlist>
class Write : public Work {
  public:
    Write(Playlist playlist, std::string expected)
        : playlist_(std::move(playlist)), expected_(std::move(expected)) {}

    void prepare() override { output_ = std::make_unique<std::ostringstream>(); }
    void run() override { refusal_ = VELHLSPlaylistWriter::write(*playlist_, *output_); }
    void drop() override {
        require(!refusal_ && output_->str() == expected_, "the text is not what it was");
        output_ = nullptr;
    }

  private:
    Playlist playlist_;
    std::string expected_;
    std::unique_ptr<std::ostringstream> output_;
    std::optional<std::string> refusal_;
};

/// A duration as it is printed into a text.
using PrintDuration = std::to_chars_result (*)(char* begin, char* end, double duration);

std::to_chars_result printSixDecimals(char* begin, char* end, double duration) {
    return std::to_chars(begin, end, duration, std::chars_format::fixed, 6);
}

std::to_chars_result printShortest(char* begin, char* end, double duration) {
    return std::to_chars(begin, end, duration, std::chars_format::fixed);
}

/// The text of a media playlist in ready pieces, cut where a duration stands.
template <PrintDuration print>
class WritingFloor : public Work {
  public:
    WritingFloor(const Stream& stream, std::string expected) : expected_(std::move(expected)) {
        const std::string mark = "#EXTINF:";
        std::size_t start = 0;
        for (const auto& segment : stream->segments) {
            const std::size_t durationStart = expected_.find(mark, start) + mark.size();
            pieces_.push_back({expected_.substr(start, durationStart - start), segment->duration});
            start = expected_.find_first_of(",\n", durationStart);
        }
        end_ = expected_.substr(start);
    }

    void prepare() override { output_ = std::make_unique<std::ostringstream>(); }

    void run() override {
        std::string text;
        for (const Piece& piece : pieces_) {
            std::array<char, 64> digits;
            const auto printed = print(digits.data(), digits.data() + digits.size(), piece.duration);
            text += piece.text;
            text.append(digits.data(), printed.ptr);
        }
        text += end_;
        output_->write(text.data(), static_cast<std::streamsize>(text.size()));
    }

    void drop() override {
        require(output_->str() == expected_, "the floor's text is not the library's");
        output_ = nullptr;
    }

  private:
    struct Piece {
        std::string text;
        double duration;
    };

    std::string expected_;
    std::vector<Piece> pieces_;
    std::string end_;
    std::unique_ptr<std::ostringstream> output_;
};

Measurement mediaParse(std::string name, const std::string& text, std::size_t segments, bool fresh = false) {
    return {std::move(name),
            segments,
            text.size(),
            fresh ? std::size_t{2000} : std::size_t{1},
            std::make_unique<ParseMedia>(text, fresh, segments),
            "O",
            std::make_unique<ObjectFloor>(text, fresh, segments)};
}

Measurement masterParse(std::string name, const std::string& text, std::size_t variants, bool fresh = false) {
    return {std::move(name),
            variants,
            text.size(),
            fresh ? std::size_t{500} : std::size_t{1},
            std::make_unique<ParseMaster>(text, fresh, variants),
            "R",
            std::make_unique<ReadingFloor>(text, fresh)};
}

/// The floor is the parse of the same playlist written out.
Measurement patternParse(std::string name, std::size_t segments) {
    const std::string text = inputs::pattern(segments);
    return {std::move(name),
            segments,
            text.size(),
            1,
            std::make_unique<ParseMedia>(text, false, segments),
            "written out",
            std::make_unique<ParseMedia>(inputs::patternWrittenOut(segments), false, segments)};
}

template <typename Playlist>
std::string rendered(const Playlist& playlist) {
    std::ostringstream output;
    require(playlist->render(output) == 0, "the playlist does not render");
    return output.str();
}

Measurement mediaRender(std::string name, const std::string& text, std::size_t segments) {
    std::istringstream input(text);
    const Stream stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    const std::string expected = rendered(stream);
    return {std::move(name),
            segments,
            expected.size(),
            1,
            std::make_unique<Render<Stream>>(stream, expected),
            "W",
            std::make_unique<WritingFloor<printSixDecimals>>(stream, expected)};
}

/// The floor is the reading of the same text: there is no duration to write.
Measurement masterRender(std::string name, const std::string& text, std::size_t variants) {
    std::istringstream input(text);
    const Manifest manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
    const std::string expected = rendered(manifest);
    return {std::move(name),
            variants,
            expected.size(),
            1,
            std::make_unique<Render<Manifest>>(manifest, expected),
            "R",
            std::make_unique<ReadingFloor>(expected, false)};
}

template <typename Playlist>
std::string written(const Playlist& playlist) {
    std::ostringstream output;
    require(!VELHLSPlaylistWriter::write(*playlist, output), "the playlist is refused");
    return output.str();
}

Measurement mediaWrite(std::string name, const std::string& text, std::size_t segments) {
    std::istringstream input(text);
    const Stream stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    const std::string expected = written(stream);
    return {std::move(name),
            segments,
            expected.size(),
            1,
            std::make_unique<Write<Stream>>(stream, expected),
            "W",
            std::make_unique<WritingFloor<printShortest>>(stream, expected)};
}

/// The floor is that of a render.
Measurement masterWrite(std::string name, const std::string& text, std::size_t variants) {
    std::istringstream input(text);
    const Manifest manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
    const std::string expected = written(manifest);
    return {std::move(name),
            variants,
            expected.size(),
            1,
            std::make_unique<Write<Manifest>>(manifest, expected),
            "R",
            std::make_unique<ReadingFloor>(expected, false)};
}

/// Finds the lines of a text that is there already.
class Lines : public Work {
  public:
    Lines(std::string text, std::size_t lines) : text_(std::move(text)), lines_(lines) {}

    void prepare() override { taken_ = text_; }
    void run() override { document_ = std::make_unique<VELHLSDocument>(std::move(taken_)); }
    void drop() override {
        require(document_->lineCount() == lines_, "the document lost lines");
        document_ = nullptr;
    }

  protected:
    [[nodiscard]] const VELHLSDocument& document() const { return *document_; }

  private:
    std::string text_;
    std::string taken_;
    std::size_t lines_;
    std::unique_ptr<VELHLSDocument> document_;
};

/// The same, and finds the structure, and scans all attributes.
class WholeDocument : public Lines {
  public:
    using Lines::Lines;

    void run() override {
        Lines::run();
        structure_ = std::make_unique<VELHLSStructure>(document());
        for (const VELHLSLine line : document().lines()) {
            if (line.definition == nullptr || line.definition->form != VELHLSTagDefinition::AttributeList)
                continue;
            for (const VELHLSAttribute& attribute : line.attributes())
                attributeBytes_ += attribute.value.size();
        }
    }

    void drop() override {
        require(structure_->segmentCount() + structure_->variants().size() > 0, "the structure is empty");
        structure_ = nullptr;
        Lines::drop();
    }

  private:
    std::unique_ptr<VELHLSStructure> structure_;
    std::size_t attributeBytes_ = 0;
};

/// Its items are lines.
template <typename Document>
Measurement documentOf(std::string name, const std::string& text) {
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    return {std::move(name),
            lines,
            text.size(),
            1,
            std::make_unique<Document>(text, lines),
            "R",
            std::make_unique<ReadingFloor>(text, false)};
}

/// Checks a text by RFC 8216, the default, and finds whether the models reject it.
class Check : public Work {
  public:
    explicit Check(std::string text) : text_(std::move(text)) {}

    void prepare() override {}
    void run() override { report_ = VELHLSDiagnostics::check(text_); }
    void drop() override {
        require(!report_.rejected, "the playlist is rejected");
        report_ = {};
    }

  private:
    std::string text_;
    VELHLSDiagnostics::Report report_;
};

/// The models' parse of a text in memory.
class ParseText : public Work {
  public:
    ParseText(std::string text, bool isMaster) : text_(std::move(text)), isMaster_(isMaster) {}

    void prepare() override {}
    void run() override {
        if (isMaster_)
            manifest_ = VELHLSParsedManifest::parseManifest(std::string_view(text_));
        else
            stream_ = VELHLSMediaStream::parseMediaStream(std::string_view(text_));
    }
    void drop() override {
        require(manifest_ != nullptr || stream_ != nullptr, "the playlist is rejected");
        manifest_ = nullptr;
        stream_ = nullptr;
    }

  private:
    std::string text_;
    bool isMaster_;
    Manifest manifest_;
    Stream stream_;
};

/// The floor is the parse of the same text from a stream.
template <typename StreamParse>
Measurement textParse(std::string name, const std::string& text, std::size_t items, bool fresh = false) {
    constexpr bool isMaster = std::is_same_v<StreamParse, ParseMaster>;
    return {std::move(name),
            items,
            text.size(),
            fresh ? std::size_t{500} : std::size_t{1},
            std::make_unique<ParseText>(text, isMaster),
            "stream",
            std::make_unique<StreamParse>(text, fresh, items)};
}

/// The same work many times in one process, on a text each, as a service does it.
template <typename Each>
class Many : public Work {
  public:
    template <typename... Arguments>
    Many(std::size_t count, const Arguments&... arguments) {
        for (std::size_t place = 0; place < count; ++place)
            works_.push_back(std::make_unique<Each>(arguments...));
    }

    void prepare() override {
        for (const auto& work : works_)
            work->prepare();
    }
    void run() override {
        for (const auto& work : works_) {
            work->run();
            work->drop();
        }
    }
    void drop() override {}

  private:
    std::vector<std::unique_ptr<Each>> works_;
};

Measurement checkOfMany(std::string name, const std::string& text, std::size_t count) {
    return {std::move(name),
            count,
            text.size() * count,
            1,
            std::make_unique<Many<Check>>(count, text),
            "P",
            std::make_unique<Many<ParseText>>(count, text, false)};
}

Measurement checkOf(std::string name, const std::string& text, std::size_t items, bool isMaster) {
    return {std::move(name),
            items,
            text.size(),
            1,
            std::make_unique<Check>(text),
            "P",
            std::make_unique<ParseText>(text, isMaster)};
}

using Maker = std::function<Measurement(const std::string&)>;

const std::vector<std::pair<std::string, Maker>>& makers() {
    constexpr std::size_t many = 100000;
    constexpr std::size_t million = 1000000;
    using Name = const std::string&;
    static const std::vector<std::pair<std::string, Maker>> all = {
        {"parse/vod/100000", [](Name name) { return mediaParse(name, inputs::vod(many), many); }},
        {"parse/vod/1000000", [](Name name) { return mediaParse(name, inputs::vod(million), million); }},
        {"parse/vod-long-uris/100000",
         [](Name name) { return mediaParse(name, inputs::vodWithLongUris(many), many); }},
        {"parse/rich/100000", [](Name name) { return mediaParse(name, inputs::rich(many), many); }},
        {"parse/live", [](Name name) { return mediaParse(name, inputs::live(), 6, true); }},
        {"parse/pattern/100000", [](Name name) { return patternParse(name, many); }},
        {"parse/master-small", [](Name name) { return masterParse(name, inputs::smallMaster(), 16, true); }},
        {"parse/master-large/10000",
         [](Name name) { return masterParse(name, inputs::largeMaster(10000), 10000); }},
        {"text/vod/100000", [](Name name) { return textParse<ParseMedia>(name, inputs::vod(many), many); }},
        {"text/live", [](Name name) { return textParse<ParseMedia>(name, inputs::live(), 6, true); }},
        {"text/master-small",
         [](Name name) { return textParse<ParseMaster>(name, inputs::smallMaster(), 16, true); }},
        {"text/master-large/10000",
         [](Name name) { return textParse<ParseMaster>(name, inputs::largeMaster(10000), 10000); }},
        {"render/vod/100000", [](Name name) { return mediaRender(name, inputs::vod(many), many); }},
        {"render/rich/100000", [](Name name) { return mediaRender(name, inputs::rich(many), many); }},
        {"render/master-large/10000",
         [](Name name) { return masterRender(name, inputs::largeMaster(10000), 10000); }},
        {"write/vod/100000", [](Name name) { return mediaWrite(name, inputs::vod(many), many); }},
        {"write/rich/100000", [](Name name) { return mediaWrite(name, inputs::rich(many), many); }},
        {"write/master-large/10000",
         [](Name name) { return masterWrite(name, inputs::largeMaster(10000), 10000); }},
        {"lines/vod/100000", [](Name name) { return documentOf<Lines>(name, inputs::vod(many)); }},
        {"lines/vod/1000000", [](Name name) { return documentOf<Lines>(name, inputs::vod(million)); }},
        {"lines/rich/100000", [](Name name) { return documentOf<Lines>(name, inputs::rich(many)); }},
        {"lines/rich/1000000", [](Name name) { return documentOf<Lines>(name, inputs::rich(million)); }},
        {"document/vod/100000", [](Name name) { return documentOf<WholeDocument>(name, inputs::vod(many)); }},
        {"document/vod/1000000",
         [](Name name) { return documentOf<WholeDocument>(name, inputs::vod(million)); }},
        {"document/rich/100000",
         [](Name name) { return documentOf<WholeDocument>(name, inputs::rich(many)); }},
        {"document/rich/1000000",
         [](Name name) { return documentOf<WholeDocument>(name, inputs::rich(million)); }},
        {"document/master-large/10000",
         [](Name name) { return documentOf<WholeDocument>(name, inputs::largeMaster(10000)); }},
        {"check/vod/100000", [](Name name) { return checkOf(name, inputs::vod(many), many, false); }},
        {"check/rich/100000", [](Name name) { return checkOf(name, inputs::rich(many), many, false); }},
        // 20 kB each.
        {"check/rich-short/1000", [](Name name) { return checkOfMany(name, inputs::rich(152), 1000); }},
        {"check/master-small", [](Name name) { return checkOf(name, inputs::smallMaster(), 16, true); }},
        {"check/master-large/10000",
         [](Name name) { return checkOf(name, inputs::largeMaster(10000), 10000, true); }},
    };
    return all;
}

}  // namespace

std::vector<std::string> measurementNames() {
    std::vector<std::string> names;
    for (const auto& [name, maker] : makers())
        names.push_back(name);
    return names;
}

Measurement makeMeasurement(const std::string& name) {
    for (const auto& [known, maker] : makers()) {
        if (known == name) return maker(name);
    }
    throw std::invalid_argument("no measurement is named " + name);
}
