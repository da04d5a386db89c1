#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSParsingStatus.h"

/// The attributes of one tag: name to value, in the byte-wise order of the names. Quoted values come without
/// their two quotes; nothing else is unescaped, trimmed or converted.
using VELHLSAttributeMap = std::map<std::string, std::string>;

/// The variables of a media playlist: name to value. Names are stored without "{$" and "}" and compared
/// exactly.
using VELHLSDefineMap = std::unordered_map<std::string, std::string>;

/// Stateless functions that the records of both kinds of playlist share, offered to callers too.
class VELHLS_API VELHLSUtility {
  public:
    VELHLSUtility() = delete;

    /// The longest text, in bytes, that substituteVariables makes of a text with references: 1 MiB. The
    /// values that it reads on the way may be twice that together, and as long as the given text on top, each
    /// counted with one byte more: values that refer to each other and come to nothing have an end too.
    static constexpr std::size_t maximumSubstitutedBytes = std::size_t{1} << 20;

    /// The most variables that EXT-X-DEFINE may put into one bucket of a VELHLSDefineMap (times its max_load_factor,
    /// where a caller raised that): 64. One more rejects the playlist. Names that nobody chose for that do not
    /// come near it, however many there are. It is there for names whose hashes were made to meet, which would
    /// take time that grows with the square of their number.
    static constexpr std::size_t maximumCollidingNames = 64;

    /// Stores `error` and a copy of `message` in `status`: both, or neither when the copy throws std::bad_alloc. A
    /// null status is legal: nothing happens.
    static void updateParsingStatusWithError(VELHLSParsingStatus* status, VELHLSParsingError error,
                                             const std::string& message);

    /// Milliseconds since the Unix epoch on the wall clock, truncated; -1 when the clock cannot be read.
    /// Nothing inside the library calls it.
    [[nodiscard]] static std::int64_t getTimeNow();

    /// Reads an attribute list: the text after a tag's colon (RFC 8216, section 4.2).
    ///
    ///     A=1,B="x,y",C=3      A: 1    B: x,y    C: 3
    ///
    /// Returns a map that the caller owns: an empty one for an empty text, null for a malformed text. It
    /// never throws for malformed text. It takes time linear in the text, but for the sorting of the names.
    ///
    /// Kept as is: no white space is trimmed, so `A=1, B=2` has the names "A" and " B". Of several attributes
    /// with one name the first holds, the others are dropped. Text between "=" and an opening quote is
    /// dropped: `A=pre"x"` gives x. After the last comma a missing closing quote is accepted (`A="x` gives
    /// x), and text after a closing quote is dropped (`A="x"y` gives x); before a comma both are malformed. A
    /// trailing comma, an empty name and an empty unquoted value are malformed. The type of a value is not
    /// checked.
    [[nodiscard]] static std::unique_ptr<VELHLSAttributeMap> parseAttributeMap(const std::string& text);

    /// True exactly when `uri` begins with "http", in lower case. Kept as is: "httpfoo" counts, "HTTP://"
    /// does not.
    [[nodiscard]] static bool uriIsAbsoluteHTTPURL(const std::string& uri);

    /// All after the last "/" of `uri`: empty when it ends with one, the whole of it when there is none.
    /// Query and fragment are not told apart: "a/b.ts?x=/c" gives "c".
    [[nodiscard]] static std::string lastPathComponentFromURI(const std::string& uri);

    /// True when the line is a media pattern tag (vendor extension): "#", then exactly "ZOR-PATTERN_START",
    /// "ZOR-PATTERN_END", "ZOR-PATTERN_REPEAT" or "ZOR-DEFINE_INCREMENT", then ":". Without a colon it is
    /// none.
    [[nodiscard]] static bool isMediaPatternTag(const std::string& line);

    /// Replaces the references `{$NAME}` in `text` by the variables' values, and the references in those in
    /// turn.
    ///
    ///     "seg{$n}.ts" with n = "7"                   "seg7.ts"
    ///     "{$x}"       with x = "{$y}", y = "2"       "2"
    ///
    /// With null `defines`, or without any reference, the text comes back unchanged. The result is empty when
    /// a name is not defined: one unknown reference empties the whole. Kept as is: a lone "{" or "$" begins a
    /// reference too, whose name starts two characters after it and ends before the next "}".
    ///
    /// Treated like an unknown name, so that every call ends: a reference without a closing "}"; a "{" or "$"
    /// that is one of the last two characters; a definition that leads back to itself; and a text that would
    /// exceed `maximumSubstitutedBytes`.
    [[nodiscard]] static std::string substituteVariables(std::string text,
                                                         std::shared_ptr<VELHLSDefineMap> defines);

    /// Reads an ISO 8601 date and time, such as "2020-01-01T10:00:05.250Z", into seconds since the Unix
    /// epoch, fraction included (EXT-X-PROGRAM-DATE-TIME: RFC 8216, section 4.3.2.6).
    ///
    /// Returns -1.0 when the text does not have the shape, which cannot be told from the valid time
    /// 1969-12-31T23:59:59Z; and when the date lies beyond what a calendar of 32-bit years holds, or the
    /// seconds are not a number or do not fit 32 bits. Throws std::invalid_argument or std::out_of_range when
    /// a field holds no number, or one that does not fit.
    ///
    /// Kept as is: the UTC offset must be there ("Z", or "+hh:mm", or "-hh:mm"), is read, and does not change
    /// the result: "2020-01-01T10:00:00+02:00" and "2020-01-01T10:00:00Z" give the same value. Text after the
    /// number of a field is ignored, fields out of their range carry over (month 13 is January of the next
    /// year), and without a "T" the hour is read from the start of the text.
    [[nodiscard]] static double parseTimestamp(const std::string& text);

    /// Appends the date and time of `seconds` since the Unix epoch: "2020-01-01T10:00:15.250+00:00". The
    /// suffix is always "+00:00".
    ///
    /// Kept as is: seconds below 10 are written with one digit before the point ("10:00:5.500"), which
    /// parseTimestamp reads; seconds are rounded to milliseconds by themselves, so that 59.9996 gives
    /// "60.000"; a time before the epoch has its fraction taken off the second ("00:00:-0.500"); and at most
    /// 31 characters are written. A time beyond what a calendar of 32-bit years holds is written as the
    /// nearest whole second that it does hold, and not-a-number as the epoch.
    static void renderTimestamp(double seconds, std::string& out);
};
