#include "velhls/common/Substitution.h"

#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// How far the substitution of one variable has come.
struct Progress {
    bool open = false;
    /// Set when the value was read to its end without a reference that goes on after it: such a value always
    /// gives the same text, which is then copied from where it first stood in the result.
    bool complete = false;
    std::size_t start = 0;
    std::size_t length = 0;
};

/// Reads a text together with the values that are inserted into it, as if it had been one text from the
/// start.
///
/// A replaced reference is read again from its value's first character, so a value may hold references of its
/// own, and even begin one that ends in the text after it. Therefore the texts form a stack: the given one
/// at the bottom, and on it the values that are open, each with its position. A value stays open until a
/// character after its end is read. So a reference to an open variable is one that its own value led to,
/// with nothing consumed from outside it: it would come back for ever.
class Substituter {
  public:
    Substituter(std::string_view text, const VELHLSDefineMap& defines)
        : defines_(defines), mostInsertedBytes_(text.size() + 2 * VELHLSUtility::maximumSubstitutedBytes) {
        sources_.push_back({text, nullptr});
    }

    Substitution run() {
        while (std::optional<char> character = readOutsideReference()) {
            const bool startsReference = *character == '{' || *character == '$';
            if (startsReference ? !replaceReference() : !append(*character)) return {{}, inserted_};
        }
        return {std::move(result_), inserted_};
    }

  private:
    struct Source {
        std::string_view rest;
        Progress* progress;
    };

    std::optional<char> readOutsideReference() {
        while (!sources_.empty() && sources_.back().rest.empty())
            closeSource(true);
        return readCharacter();
    }

    std::optional<char> readInsideReference() {
        while (!sources_.empty() && sources_.back().rest.empty())
            closeSource(false);
        return readCharacter();
    }

    std::optional<char> readCharacter() {
        if (sources_.empty()) return std::nullopt;
        const char character = sources_.back().rest.front();
        sources_.back().rest.remove_prefix(1);
        return character;
    }

    void closeSource(bool complete) {
        if (Progress* progress = sources_.back().progress) {
            progress->open = false;
            progress->complete = complete;
            progress->length = result_.size() - progress->start;
        }
        sources_.pop_back();
    }

    /// Called after the character that starts a reference. False when there is nothing to put in its place.
    bool replaceReference() {
        const std::optional<std::string> name = readName();
        if (!name) return false;
        const auto define = defines_.find(*name);
        if (define == defines_.end()) return false;
        Progress& progress = progress_[&define->first];
        if (progress.open) return false;
        return progress.complete ? appendAgain(progress) : open(progress, define->second);
    }

    /// The name of a reference: all from the second character after its first up to the next "}", which is
    /// consumed. Nothing without that "}", or when the reference starts too close to the end.
    std::optional<std::string> readName() {
        const std::optional<char> second = readInsideReference();
        std::optional<char> next = readInsideReference();
        if (!second || !next) return std::nullopt;
        if (*second == '}') {
            // The "}" ends the reference before any name; what was read after it stands after the reference.
            giveBackCharacter();
            return std::string();
        }
        std::string name;
        for (; next && *next != '}'; next = readInsideReference())
            name += *next;
        if (!next) return std::nullopt;
        return name;
    }

    void giveBackCharacter() {
        std::string_view& rest = sources_.back().rest;
        rest = std::string_view(rest.data() - 1, rest.size() + 1);
    }

    bool open(Progress& progress, std::string_view value) {
        if (!spend(value.size())) return false;
        progress.open = true;
        progress.start = result_.size();
        sources_.push_back({value, &progress});
        return true;
    }

    bool appendAgain(const Progress& progress) {
        if (!spend(progress.length)) return false;
        result_.append(result_, progress.start, progress.length);
        return fits();
    }

    bool append(char character) {
        result_ += character;
        return fits();
    }

    [[nodiscard]] bool fits() const { return result_.size() <= VELHLSUtility::maximumSubstitutedBytes; }

    /// References that add next to nothing to the result cost time all the same, and values can be built so
    /// that there is no end of them.
    bool spend(std::size_t bytes) {
        inserted_ += bytes + 1;
        return inserted_ <= mostInsertedBytes_;
    }

    const VELHLSDefineMap& defines_;
    const std::size_t mostInsertedBytes_;
    std::vector<Source> sources_;
    std::unordered_map<const std::string*, Progress> progress_;
    std::string result_;
    std::size_t inserted_ = 0;
};

}  // namespace

Substitution substitute(std::string_view text, const VELHLSDefineMap& defines) {
    if (holdsNone(text, referenceStarts)) return {std::string(text), 0};
    return Substituter(text, defines).run();
}

}  // namespace velhls
