// Parses, renders, writes and checks hostile inputs, each in a size and in twice that size, and prints what it did, one line
// for each call of measuredRun: the input, the kind of playlist, the work, the bytes of the text. Callgrind counts the
// calls: --toggle-collect=measuredRun --dump-after=measuredRun
//
//   velhls_cost           for callgrind
//   velhls_cost_bytes     the same, and prints the bytes that the result holds, and the most that were held until then
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tests/hostile/HostileInputs.h"
#include "tests/support/LibraryFindings.h"
#include "tests/support/Parses.h"
#ifdef VELHLS_COUNTS_BYTES
#include "tests/heap/Heap.h"
#endif

extern "C" __attribute__((noinline)) void measuredRun(const std::function<void()>* run) {
    try {
        (*run)();
    } catch (const std::logic_error&) {
        // Numbers that are none are rejected by throwing.
    }
}

namespace {

#ifdef VELHLS_COUNTS_BYTES
void measureAndPrint(const std::function<void()>& run) {
    const std::size_t before = heap::bytesInUse();
    heap::forgetTheMost();
    measuredRun(&run);
    const std::size_t held = heap::bytesInUse() - before;
    std::cout << '\t' << held << '\t' << heap::mostBytesInUse() - before << std::endl;
}
#else
void measureAndPrint(const std::function<void()>& run) {
    std::cout << std::endl;
    // The first large block has malloc put all in order that was freed before, thousands of small ones.
    constexpr std::size_t large = 100000;
    ::operator delete(::operator new(large));
    measuredRun(&run);
}
#endif

void measure(const hostile::Input& input, const std::string& work, std::size_t bytes,
             const std::function<void()>& run) {
    const char* const kind = input.kind == VELHLSDiagnostics::Master ? "master" : "media";
    std::cout << input.name << '\t' << kind << '\t' << work << '\t' << bytes;
    measureAndPrint(run);
}

/// All that depends on a model. What the writer refuses it has looked at until then.
template <typename Parse>
void measureModel(const hostile::Input& input, const std::string& text, Parse parse) {
    std::istringstream stream(text);
    decltype(parse(stream, nullptr)) playlist;
    measure(input, "parse", text.size(), [&] { playlist = parse(stream, nullptr); });
    if (playlist == nullptr) return;
    std::ostringstream out;
    measure(input, "render", text.size(), [&] { static_cast<void>(playlist->render(out)); });
    std::ostringstream written;
    measure(input, "write", text.size(),
            [&] { static_cast<void>(VELHLSPlaylistWriter::write(*playlist, written)); });
}

/// Lines, structure and all attributes.
class WholeDocument {
  public:
    void read(const std::string& text) {
        document_ = std::make_unique<VELHLSDocument>(text);
        structure_ = std::make_unique<VELHLSStructure>(*document_);
        for (const VELHLSLine line : document_->lines()) {
            for (const VELHLSAttribute& attribute : line.attributes())
                bytes_ += attribute.value.size();
        }
        for (const VELHLSStructure::Segment segment : structure_->segments())
            bytes_ += segment.inForce.keyLines.size();
    }

  private:
    std::unique_ptr<VELHLSDocument> document_;
    std::unique_ptr<VELHLSStructure> structure_;
    std::size_t bytes_ = 0;
};

void measure(const hostile::Input& input, std::size_t size) {
    const std::string text = input.text(size);
    if (input.kind == VELHLSDiagnostics::Master) {
        measureModel(input, text, playlist::parseMaster);
    } else {
        measureModel(input, text, playlist::parseMedia);
    }
    measure(input, "check", text.size(), [&] { static_cast<void>(library::findingsIn(text, input.kind)); });
    WholeDocument document;
    measure(input, "document", text.size(), [&] { document.read(text); });
}

/// What the check of growth is there to find: every line is compared with every other.
void measureControl() {
    const hostile::Input control = {"control", VELHLSDiagnostics::Master, hostile::manyRecords / 2,
                                    [](std::size_t n) { return hostile::times(n, "line\n"); }};
    for (const std::size_t size : {control.size, 2 * control.size}) {
        std::vector<std::string> lines;
        std::istringstream text(control.text(size));
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        std::size_t pairs = 0;
        measure(control, "parse", text.str().size(), [&] {
            for (const std::string& left : lines) {
                for (const std::string& right : lines)
                    pairs += left == right ? 1 : 0;
            }
        });
        if (pairs != size * size) throw std::runtime_error("the control is broken");
    }
}

}  // namespace

int main() {
    measureControl();
    for (const hostile::Input& input : hostile::inputs()) {
        measure(input, input.size);
        measure(input, 2 * input.size);
    }
    return 0;
}
