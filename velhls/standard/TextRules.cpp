#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

#include "velhls/common/EightBytes.h"
#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Utf8.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/TextCharacters.h"

namespace velhls {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The line without the byte order mark that may begin the text.
std::string_view withoutMark(const VELHLSLine& line) {
    return line.number == 1 && startsWith(line.text, byteOrderMark) ? line.text.substr(byteOrderMark.size())
                                                                    : line.text;
}

void findUtf16(const CheckedPlaylist& playlist, const Tell& tell) {
    tell(playlist.top(), playlist.top().text.substr(0, 2), {{}, "UTF-16", {}});
}

void findByteOrderMark(const CheckedLine& checked, const Tell& tell) {
    const std::string_view text = checked.line.text;
    if (withoutMark(checked.line).size() != text.size())
        tell(checked.line, text.substr(0, byteOrderMark.size()), {{}, "one", {}});
}

/// The first finding of a line is enough: a text in another encoding has many.
void findOtherEncoding(const CheckedLine& checked, const Tell& tell) {
    std::string_view rest = checked.line.text;
    while (!rest.empty()) {
        const utf8::Character character = utf8::firstCharacter(rest);
        if (character.length == 0)
            return tell(checked.line, rest.substr(0, 1), {{}, "a byte that is none", {}});
        rest.remove_prefix(character.length);
    }
}

constexpr bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

/// The white space around what a line says is another rule's, and so are carriage returns.
void findControlCharacter(const CheckedLine& checked, const Tell& tell) {
    std::string_view rest = trimmed(withoutMark(checked.line));
    while (!rest.empty()) {
        const utf8::Character character = utf8::firstCharacter(rest);
        if (character.length == 0) return;
        if (isControl(character.number) && character.number != '\r')
            return tell(checked.line, rest.substr(0, character.length));
        rest.remove_prefix(character.length);
    }
}

void findCarriageReturn(const CheckedLine& checked, const Tell& tell) {
    const std::string_view text = checked.line.text;
    const std::size_t place = text.find('\r');
    if (place != std::string_view::npos) tell(checked.line, text.substr(place, 1), {{}, "one", {}});
}

/// The letters that an accent makes one character of, in Unicode and in the first two of its blocks after ASCII: "e" and U+0301
/// are U+00E9.
bool isComposed(char letter, std::uint32_t accent) {
    struct Row {
        std::uint32_t accent;
        std::string_view letters;
    };
    constexpr std::array<Row, 13> rows = {{{0x300, "AEIOUaeiou"},
                                           {0x301, "ACEILNORSUYZaceilnorsuyz"},
                                           {0x302, "ACEGHIJOSUWYaceghijosuwy"},
                                           {0x303, "AINOUainou"},
                                           {0x304, "AEIOUaeiou"},
                                           {0x306, "AEGIOUaegiou"},
                                           {0x307, "CEGIZcegz"},
                                           {0x308, "AEIOUYaeiouy"},
                                           {0x30A, "AUau"},
                                           {0x30B, "OUou"},
                                           {0x30C, "CDELNRSTZcdelnrstz"},
                                           {0x327, "CGKLNRSTcgklnrst"},
                                           {0x328, "AEIUaeiu"}}};
    return std::any_of(rows.begin(), rows.end(), [&](const Row& row) {
        return row.accent == accent && row.letters.find(letter) != std::string_view::npos;
    });
}

void findDecomposed(const CheckedLine& checked, const Tell& tell) {
    const std::string_view text = checked.line.text;
    for (std::size_t place = 1; place + 1 < text.size(); ++place) {
        const utf8::Character accent = utf8::firstCharacter(text.substr(place));
        if (accent.length == 2 && isComposed(text[place - 1], accent.number))
            return tell(checked.line, text.substr(place - 1, 3));
    }
}

/// Where a value ends is not known of tags that are not, and a title may end as it likes.
bool mayEndInBlank(const CheckedLine& checked) {
    const VELHLSTagDefinition* const tag = checked.line.definition;
    if (checked.line.kind == VELHLSLine::Uri) return false;
    if (tag == nullptr || !checked.playlist.knows(*tag) || tag->form == VELHLSTagDefinition::Anything)
        return true;
    return tag->form == VELHLSTagDefinition::Duration && checked.value.find(',') != std::string_view::npos;
}

bool isIndented(const VELHLSLine& line) {
    const std::string_view text = withoutMark(line);
    return !text.empty() && blanks.holds(text.front());
}

/// The next line in this direction that is a tag or a URI; nothing when there is none.
std::optional<VELHLSLine> neighbour(const VELHLSDocument& document, std::size_t number, bool isAfter) {
    while (isAfter ? number < document.lineCount() : number > 1) {
        number = isAfter ? number + 1 : number - 1;
        const VELHLSLine line = document.line(number);
        if (line.kind == VELHLSLine::Uri || line.kind == VELHLSLine::Tag) return line;
    }
    return std::nullopt;
}

/// Whether a line with white space before it is the first of those that follow each other: they are told as one.
bool beginsIndentation(const CheckedLine& checked) {
    const auto before = neighbour(checked.playlist.document(), checked.line.number, false);
    return !before || !isIndented(*before);
}

/// Of the first line with white space before it, and those that follow.
std::string indentationSeen(const CheckedLine& checked) {
    const VELHLSDocument& document = checked.playlist.document();
    std::size_t last = checked.line.number;
    for (auto next = neighbour(document, last, true); next && isIndented(*next);
         next = neighbour(document, last, true))
        last = next->number;
    std::string seen = "white space before a ";
    seen += checked.line.kind == VELHLSLine::Uri ? "URI" : "tag";
    return last == checked.line.number
               ? seen
               : seen + ", and before all tags and URIs up to line " + std::to_string(last);
}

/// Before a tag or a URI, after it, after a tag's colon, or inside a URI line: of a line the first.
void findWhiteSpace(const CheckedLine& checked, const Tell& tell) {
    const VELHLSLine& line = checked.line;
    if (line.kind != VELHLSLine::Uri && line.kind != VELHLSLine::Tag) return;
    const std::string_view text = withoutTrailing(withoutMark(line), lineEnds);
    const auto tellOf = [&](std::string_view place, std::string_view seen) {
        tell(line, place, {{}, seen, {}});
    };
    const std::string_view content = trimmed(text);
    if (isIndented(line) && beginsIndentation(checked)) {
        const std::string seen = indentationSeen(checked);
        return tellOf(text.substr(0, static_cast<std::size_t>(content.data() - text.data())), seen);
    }
    const bool isKnown = line.definition != nullptr && line.definition->form != VELHLSTagDefinition::Anything;
    if (isKnown && line.hasColon && !checked.value.empty() && checked.value.data() != line.value.data()) {
        return tellOf(
            line.value.substr(0, static_cast<std::size_t>(checked.value.data() - line.value.data())),
            "white space after the colon");
    }
    if (line.kind == VELHLSLine::Uri) {
        const std::size_t inside = content.find_first_of(" \t");
        if (inside != std::string_view::npos)
            return tellOf(content.substr(inside, 1), "white space inside a URI");
    }
    if (withoutTrailing(text, blanks).size() < text.size() && !mayEndInBlank(checked))
        tellOf(text.substr(withoutTrailing(text, blanks).size()), "white space at the end");
}

// clang-format off
constexpr PlaylistEntry ofEncoding[] = {
    {{{"encoded-as-utf-16", error, "The text is encoded as UTF-16.",
       "a text in UTF-8", "RFC 8216, section 4.1", false}, "MUST"}, findUtf16},
};

constexpr LineEntry rules[] = {
    {{{"not-utf-8", error, "A line is not UTF-8.",
       "UTF-8", "RFC 8216, section 4.1", false}, "MUST"}, findOtherEncoding},
    {{{"begins-with-byte-order-mark", error, "The text begins with a byte order mark.",
       "no byte order mark", "RFC 8216, section 4.1", false}, "MUST NOT"}, findByteOrderMark},
    {{{"control-character", error, "A line holds a control character.",
       "no control character", "RFC 8216, section 4.1", false}, "MUST NOT"}, findControlCharacter},
    {{{"text-not-normalized", error, "A letter and its accent are two characters where Unicode has one.",
       "text normalized to NFC", "RFC 8216, section 4.1", false}, "MUST"}, findDecomposed},
    {{{"carriage-return-inside-line", error, "A carriage return stands inside a line.",
       "no carriage return inside a line", "RFC 8216, section 4.1", false}, "SYN"}, findCarriageReturn},
    {{{"white-space", error, "White space stands before or after a tag or a URI, or inside a URI.",
       "no white space", "RFC 8216, section 4.1", false}, "MUST NOT"}, findWhiteSpace},
};
// clang-format on

constexpr CharacterSet hexadecimal("0123456789ABCDEFabcdef");
constexpr CharacterSet ofUris(
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?@!$&'()*+,;=");

/// A reference to a variable at the start of the text; empty when there is none.
std::string_view variableAt(std::string_view text) {
    if (!startsWith(text, "{$")) return {};
    const std::size_t end = text.find('}');
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

/// What follows the address in brackets that the host of a URI may be; all of it when there is none.
std::string_view afterAddress(std::string_view uri) {
    const std::size_t slashes = uri.find("//");
    if (slashes == std::string_view::npos || uri.find_first_of("?#") < slashes) return uri;
    const std::size_t end = uri.find_first_of("/?#", slashes + 2);
    const std::string_view authority = uri.substr(0, end);
    const std::size_t open = authority.find('[', slashes);
    const std::size_t close = authority.rfind(']');
    const bool hasAddress = open != std::string_view::npos && close != std::string_view::npos && open < close;
    return hasAddress ? uri.substr(close + 1) : uri;
}

}  // namespace

namespace {

/// Whether each byte is at least this one, which is ' ' or '!', and below 0x7F. Eight at a time.
bool holdsOnlyPrintable(std::string_view text, unsigned char least) {
    const auto isOdd = [least](std::string_view eight) {
        const std::uint64_t bytes = eightBytesAt(eight.data());
        // A byte of 0x7F and above has its high bit, or gets it.
        return (markBelow(bytes, least) | ((bytes | (bytes + oneInEachByte)) & highBits)) != 0;
    };
    constexpr std::size_t width = sizeof(std::uint64_t);
    if (text.size() >= width) {
        for (std::size_t place = 0; place + width <= text.size(); place += width) {
            if (isOdd(text.substr(place, width))) return false;
        }
        // The last ones, some of which were looked at already.
        return !isOdd(text.substr(text.size() - width));
    }
    return std::all_of(text.begin(), text.end(), [least](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= least && byte < 0x7F;
    });
}

}  // namespace

bool isPlain(std::string_view line) {
    // Most lines have no blank.
    if (holdsOnlyPrintable(line, ' ' + 1)) return true;
    // Inside of a tag's line a blank is no matter for these rules, unless it follows a colon.
    const bool isTag = line.front() == '#';
    return isTag && line.back() != ' ' && holdsOnlyPrintable(line, ' ') &&
           line.find(": ") == std::string_view::npos;
}

bool isUtf16(std::string_view text) {
    using namespace std::string_view_literals;
    constexpr std::array beginnings = {"\xFF\xFE"sv, "\xFE\xFF"sv, "#\0"sv, "\0#"sv};
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [text](std::string_view beginning) { return startsWith(text, beginning); });
}

std::string_view oddPartOfUri(std::string_view uri, bool hasVariables) {
    if (holdsOnly(uri, ofUris)) return {};
    std::string_view rest = afterAddress(uri);
    bool isFragment = false;
    while (!rest.empty()) {
        std::size_t length = 1;
        const std::string_view variable = hasVariables ? variableAt(rest) : std::string_view();
        if (!variable.empty()) {
            length = variable.size();
        } else if (rest.front() == '%') {
            length = 3;
            const std::string_view digits = rest.substr(1, 2);
            if (digits.size() < 2 || !holdsOnly(digits, hexadecimal))
                return rest.substr(0, 1 + digits.size());
        } else if (rest.front() == '#' && !isFragment) {
            isFragment = true;
        } else if (!ofUris.holds(rest.front())) {
            return rest.substr(0, std::max<std::size_t>(1, utf8::firstCharacter(rest).length));
        }
        rest.remove_prefix(length);
    }
    return {};
}

StandardTable<CheckedPlaylist> encodingRules() {
    return {ofEncoding, std::size(ofEncoding)};
}

StandardTable<CheckedLine> textRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
