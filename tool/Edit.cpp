#include "tool/Edit.h"

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <string_view>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tool/AbsoluteUri.h"
#include "tool/Failure.h"
#include "tool/OutputFile.h"
#include "tool/Printable.h"
#include "tool/UnifiedDiff.h"
#include "tool/VariantFilter.h"

namespace tool {
namespace {

[[noreturn]] void failUsage(const std::string& reason) {
    throw Failure(unusable,
                  "velhls: error: " + printable(reason) + "\nRun velhls with --help for more information.");
}

/// What --set and --remove name: a tag, perhaps an attribute of it, perhaps its value.
struct Target {
    std::string tag;
    VELHLSAttributeChange change;
};

std::string withoutHash(std::string tag) {
    if (!tag.empty() && tag.front() == '#') tag.erase(0, 1);
    return tag;
}

/// Throws for a tag that has no attributes.
void requireAttributes(const std::string& option, const Target& target) {
    const VELHLSTagDefinition* const tag = VELHLSTagDefinition::find(target.tag);
    const bool hasNone = tag != nullptr && tag->form != VELHLSTagDefinition::AttributeList &&
                         tag->form != VELHLSTagDefinition::Anything;
    if (hasNone) failUsage(option + ": " + target.tag + " has no attributes");
}

Target targetOfSet(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::size_t equals = text.find('=', std::min(colon, text.size()));
    if (colon == std::string::npos || equals == std::string::npos) {
        failUsage("--set: expected TAG:NAME=VALUE, seen " + quotedExcerpt(text));
    }
    const std::string name = text.substr(colon + 1, equals - colon - 1);
    Target target = {withoutHash(text.substr(0, colon)), {name, text.substr(equals + 1)}};
    requireAttributes("--set", target);
    return target;
}

Target targetOfRemove(const std::string& text) {
    const std::size_t colon = text.find(':');
    Target target = {withoutHash(text.substr(0, colon)), {}};
    if (target.tag.empty()) failUsage("--remove: expected TAG or TAG:NAME, seen " + quotedExcerpt(text));
    if (colon == std::string::npos) return target;
    target.change.name = text.substr(colon + 1);
    requireAttributes("--remove", target);
    return target;
}

/// Throws for what cannot be a query, or would bring a second "?" or "&".
void requireQuery(const std::string& query) {
    const auto isOfQuery = [](char character) {
        // RFC 3986, section 3.4, and the braces of a variable.
        constexpr std::string_view others = "-._~!$&'()*+,;=:@/?%{}";
        const bool isLetterOrDigit = (character >= 'a' && character <= 'z') ||
                                     (character >= 'A' && character <= 'Z') ||
                                     (character >= '0' && character <= '9');
        return isLetterOrDigit || others.find(character) != std::string_view::npos;
    };
    const bool hasMark = !query.empty() && (query.front() == '?' || query.front() == '&');
    if (!hasMark && std::all_of(query.begin(), query.end(), isOfQuery)) return;
    failUsage(
        "--append-query: expected a query as RFC 3986 writes it, as NAME=VALUE, without \"?\" or \"&\" "
        "before it, seen " +
        quotedExcerpt(query));
}

/// "?a=1" at the end of "path", "&a=1" where there is a query, and before what "#" begins.
std::string withQuery(const std::string& uri, const std::string& query) {
    const std::size_t fragment = std::min(uri.find('#'), uri.size());
    const std::string target = uri.substr(0, fragment);
    const std::size_t mark = target.find('?');
    const bool isOpen = mark != std::string::npos && (mark + 1 == target.size() || target.back() == '&');
    const char* const separator = mark == std::string::npos ? "?" : isOpen ? "" : "&";
    return target + separator + query + uri.substr(fragment);
}

/// What is neither a playlist nor a list of URIs: UTF-16, compressed data, the error page of a server. What looks
/// like its lines is none.
bool isForeign(const VELHLSDocument& document) {
    const std::string& text = document.text();
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (document.kind() != VELHLSDocument::Neither || start == std::string::npos) return false;
    const bool isCompressed = text.compare(0, 2, "\x1F\x8B") == 0;
    return isCompressed || text[start] == '<' || text.find('\0') != std::string::npos;
}

/// Makes the edits that one request asks for, all of the text as it was read.
class Editor {
  public:
    Editor(const EditRequest& request, const VELHLSDocument& document)
        : request_(request),
          document_(document),
          structure_(document),
          filter_{request.leastBandwidth, request.mostBandwidth, request.droppedCodecs} {
        for (const std::string& text : request.set)
            set_.push_back(targetOfSet(text));
        for (const std::string& text : request.removed)
            removed_.push_back(targetOfRemove(text));
        requireQuery(request.query);
        readBase();
    }

    std::vector<VELHLSEdit> edits() {
        dropVariants();
        removeTags();
        for (const std::size_t line : gone_)
            edits_.push_back(document_.removeLine(line));
        for (const VELHLSLine line : document_.lines()) {
            if (gone_.count(line.number) == 0 && !line.name.empty()) changeAttributes(line);
        }
        changeUris();
        insertLines();
        return std::move(edits_);
    }

  private:
    [[noreturn]] void fail(std::size_t line, const std::string& reason) const {
        throw Failure(rejected,
                      nameInMessages(request_.input) + ":" + std::to_string(line) + ": error: " + reason);
    }

    void requireLines() const {
        if (!isForeign(document_)) return;
        throw Failure(rejected, nameInMessages(request_.input) +
                                    ": error: cannot be edited: no playlist (velhls check says what it is)");
    }

    void readBase() {
        if (request_.base.empty()) return;
        try {
            base_ = std::make_unique<BaseUri>(request_.base);
        } catch (const std::invalid_argument& error) {
            failUsage("--base: " + quotedExcerpt(request_.base) + ": " + error.what());
        }
    }

    void dropVariants() {
        if (filter_.dropsNone()) return;
        if (document_.kind() != VELHLSDocument::Master) {
            failUsage("--min-bandwidth, --max-bandwidth and --drop-codec want a master playlist, which " +
                      nameInMessages(request_.input) + " is not");
        }
        try {
            gone_ = linesToDrop(structure_, filter_);
        } catch (const UnjudgedVariant& unjudged) {
            fail(unjudged.line, unjudged.reason);
        }
        const auto& variants = structure_.variants();
        const auto remains = [this](const auto& variant) { return gone_.count(variant.tagLine) == 0; };
        const bool leavesSome = std::any_of(variants.begin(), variants.end(), remains);
        if (!variants.empty() && !leavesSome) {
            fail(variants.front().tagLine, "no variant would be left: nothing is changed");
        }
    }

    void removeTags() {
        for (const Target& target : removed_) {
            if (!target.change.name.empty()) continue;
            for (const VELHLSLine& line : document_.linesNamed(target.tag)) {
                gone_.insert(line.number);
                const auto variant = structure_.variantOf(line.number);
                if (!variant) continue;
                for (const std::size_t each : VELHLSStructure::linesOf(structure_.variants()[*variant]))
                    gone_.insert(each);
            }
        }
    }

    void changeAttributes(const VELHLSLine& line) {
        std::vector<VELHLSAttributeChange> changes;
        for (const Target& target : set_) {
            if (target.tag == line.name) changes.push_back(target.change);
        }
        for (const Target& target : removed_) {
            if (target.tag == line.name && !target.change.name.empty()) changes.push_back(target.change);
        }
        if (changes.empty()) return;
        try {
            edits_.push_back(document_.changeAttributes(line.number, changes));
        } catch (const std::invalid_argument& refused) {
            fail(line.number, printable(refused.what()));
        }
        for (const VELHLSAttributeChange& change : changes)
            changed_.emplace(line.number, change.name);
    }

    void changeUris() {
        if (base_ == nullptr && request_.query.empty()) return;
        requireLines();
        for (const VELHLSUri& uri : document_.uris()) {
            const bool isChanged = changed_.count({uri.line, std::string(uri.attribute)}) != 0;
            if (gone_.count(uri.line) == 0 && !isChanged && !uri.text.empty()) changeUri(uri);
        }
    }

    void changeUri(const VELHLSUri& uri) {
        try {
            std::string text(uri.text);
            if (base_ != nullptr) text = base_->resolved(text);
            const std::string scheme = schemeOf(text);
            const bool takesQuery = scheme.empty() || scheme == "http" || scheme == "https";
            if (!request_.query.empty() && takesQuery) text = withQuery(text, request_.query);
            if (text != uri.text) edits_.push_back(document_.replaceUri(uri, text));
        } catch (const std::invalid_argument& refused) {
            fail(uri.line, quotedExcerpt(uri.text) + ": " + refused.what());
        }
    }

    void insertLines() {
        if (!request_.inserted.empty()) requireLines();
        for (const auto& [number, text] : request_.inserted) {
            if (number < 1 || number > document_.lineCount() + 1) {
                failUsage("--insert-before: " + nameInMessages(request_.input) + " has " +
                          std::to_string(document_.lineCount()) + " lines, seen " + std::to_string(number));
            }
            edits_.push_back(document_.insertBefore(number, text));
        }
    }

    const EditRequest& request_;
    const VELHLSDocument& document_;
    VELHLSStructure structure_;
    VariantFilter filter_;
    std::vector<Target> set_;
    std::vector<Target> removed_;
    std::unique_ptr<BaseUri> base_;
    /// The lines that are removed.
    std::set<std::size_t> gone_;
    /// The attributes that --set and --remove gave another value, or none.
    std::set<std::pair<std::size_t, std::string>> changed_;
    std::vector<VELHLSEdit> edits_;
};

void write(const std::string& path, const std::string& text) {
    if (path == standardInput) {
        writeToStandardOutput(text);
    } else {
        replaceFile(path, text);
    }
}

}  // namespace

void edit(const EditRequest& request) {
    if (request.inPlace && request.input == standardInput)
        failUsage("--apply: standard input cannot be replaced");
    std::string text = contentOf(request.input, request.mostBytes);
    if (text.size() > VELHLSDocument::maximumBytes) {
        throw Failure(unusable,
                      nameInMessages(request.input) + ": error: cannot be edited: larger than 4 GiB");
    }
    const VELHLSDocument document(std::move(text));
    const std::vector<VELHLSEdit> edits = Editor(request, document).edits();
    const VELHLSEditedText edited = document.apply(edits);
    if (edited.overlap) throw std::logic_error("two edits overlap");
    if (request.inPlace && edited.text != document.text()) replaceFile(request.input, edited.text);
    if (request.asDiff) {
        write(request.output, unifiedDiff(document, edits, printable(nameInMessages(request.input))));
    } else if (!request.inPlace) {
        write(request.output, edited.text);
    }
}

}  // namespace tool
