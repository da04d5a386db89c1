#ifndef VELHLS_C_H
#define VELHLS_C_H

/// @file
/// velhls for C, and for every language that calls C: HTTP Live Streaming playlists (RFC 8216) in, records, columns, findings
/// and edits out. The library is libvelhls-c.
///
///     velhls_media* media = NULL;
///     velhls_error* error = NULL;
///     if (velhls_media_parse(text, length, &media, &error) == VELHLS_OK) {
///         velhls_segment segment = VELHLS_INIT(velhls_segment);
///         for (size_t i = 0; velhls_media_segment(media, i, &segment) == VELHLS_OK; ++i)
///             printf("%f %.*s\n", segment.duration, (int)segment.uri.length, segment.uri.data);
///     }
///     velhls_error_free(error);
///     velhls_media_free(media);
///
/// What holds for all of it:
///
/// **Handles** are pointers to what only the library knows. A function whose name ends in `_new`, `_parse` or `_free`, or
/// that takes a pointer to a pointer, makes or ends them: what comes out of a pointer to a pointer is the caller's, who gives
/// it to the `_free` of its type, once. That takes a null pointer too, and does nothing then. Every other pointer to a handle
/// is lent: it is good as long as the handle that it was asked of. When a call fails, what it would have made is null.
///
/// **Texts** that go in are bytes and their number, copied where they are kept; a null pointer is a text of no bytes. Texts
/// that come out are a velhls_string into a handle, good as long as that is; they are no copies, and no NUL byte ends them. Any bytes
/// may be in any of them, NUL bytes and bytes that are not UTF-8 included.
///
/// **Structures** begin with their size, which the caller sets (VELHLS_INIT does) before the library writes into one. So a
/// program that was built with this header runs with every later library of the same major version, whose structures may be
/// longer at their ends. velhls_string alone has no size and never changes.
///
/// **Statuses**: no C++ exception leaves any function. VELHLS_INVALID_ARGUMENT, for a null pointer that must not be one and for a
/// structure without its size, is not named again below; nor are VELHLS_OUT_OF_MEMORY, which every function that allocates may
/// give, and VELHLS_INTERNAL_ERROR.
///
/// **Threads**: a handle that nobody changes may be read by several at once. velhls_edits and velhls_presentation are
/// changed while they are filled.
///
/// What the fields mean, and what may surprise in them, is that of the C++ classes, which each structure names; the guide has
/// it in docs/guide. Truth values are int32_t: 0 or 1.

#include <stddef.h>
#include <stdint.h>

/// @def VELHLS_C_API
/// Marks what a shared libvelhls-c hands out.
#if defined(_WIN32) && defined(VELHLS_C_BUILDING)
#define VELHLS_C_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELHLS_C_API __declspec(dllimport)
#else
#define VELHLS_C_API __attribute__((visibility("default")))
#endif

/// @def VELHLS_INIT
/// A structure of this type that is empty but for its size: `velhls_segment segment = VELHLS_INIT(velhls_segment);`
#ifdef __cplusplus
#define VELHLS_INIT(type)          \
    ([] {                          \
        type value = type();       \
        value.size = sizeof(type); \
        return value;              \
    }())
#else
#define VELHLS_INIT(type) \
    { .size = sizeof(type) }
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// @name Statuses and texts
/// @{

/// What became of a call: one of the values that begin with VELHLS_OK.
typedef int32_t velhls_status;

enum {
    VELHLS_OK = 0,                ///< it was done
    VELHLS_REJECTED = 1,          ///< the models reject the playlist: the error says why and where
    VELHLS_REFUSED = 2,           ///< this text or model cannot be given that: the error says why
    VELHLS_OUT_OF_RANGE = 3,      ///< there is no such record, line or place
    VELHLS_NOT_FOUND = 4,         ///< what was asked for is not there
    VELHLS_INVALID_ARGUMENT = 5,  ///< a null pointer, a structure without its size, or a value that is none
    VELHLS_OUT_OF_MEMORY = 6,     ///< memory ran out; nothing was changed
    VELHLS_TOO_LARGE = 7,         ///< a text of 4 GiB or more
    VELHLS_INTERNAL_ERROR = 8     ///< a fault of the library
};

/// What a status means, in a few words, as a text that a NUL byte ends and that lives as long as the program.
VELHLS_C_API const char* velhls_status_text(velhls_status status);

/// Names the library, its version and its build: "velhls 1.0.0 (GNU 12.2.0, Release)", as a text that a NUL byte ends and
/// that lives as long as the program.
VELHLS_C_API const char* velhls_version(void);

/// Bytes and their number. As an outcome it looks into a handle, and no NUL byte ends it. The data is null where a docstring
/// says so, and otherwise not.
typedef struct velhls_string {
    const char* data;  ///< the first byte
    size_t length;     ///< the number of bytes
} velhls_string;

/// A text that a call made, and that the caller owns.
typedef struct velhls_text velhls_text;

/// The bytes of the text, as long as it lives; null for a null text.
VELHLS_C_API const char* velhls_text_data(const velhls_text* text);

/// The number of its bytes; 0 for a null text.
VELHLS_C_API size_t velhls_text_length(const velhls_text* text);

/// Frees a text.
VELHLS_C_API void velhls_text_free(velhls_text* text);

/// Why a text was rejected, or a call refused, and where (VELHLSReason).
typedef struct velhls_reason {
    size_t size;            ///< of this structure
    velhls_string rule;     ///< of a rejected playlist the name of the rule that it broke; otherwise empty
    size_t line;            ///< counted from 1; 0 where it stands nowhere
    size_t column;          ///< the byte in that line, counted from 1; 0 where it stands nowhere
    size_t length;          ///< the number of bytes; 0 where something is missing
    velhls_string message;  ///< what was expected, and what was seen
} velhls_reason;

/// Why a call failed. Functions that make one take a pointer to where it goes, which may be null when nobody asks; they
/// store null there for every status but VELHLS_REJECTED and VELHLS_REFUSED.
typedef struct velhls_error velhls_error;

/// Fills `reason`, whose texts live as long as the error.
VELHLS_C_API velhls_status velhls_error_reason(const velhls_error* error, velhls_reason* reason);

/// Frees an error.
VELHLS_C_API void velhls_error_free(velhls_error* error);

/// @}

/// @name Kinds
/// @{

/// What kind of playlist a text is: one of the values that begin with VELHLS_KIND.
typedef int32_t velhls_kind;

enum {
    VELHLS_KIND_NEITHER = 0,  ///< no tag tells
    VELHLS_KIND_MASTER = 1,   ///< a master playlist
    VELHLS_KIND_MEDIA = 2     ///< a media playlist
};

/// Stores what kind the text is by the tags that only one kind has (VELHLSDiagnostics::detectKind).
VELHLS_C_API velhls_status velhls_detect_kind(const char* text, size_t length, velhls_kind* kind);

/// @}

/// @name Keys and initialization sections
/// Both are lent by the playlist whose segments share them: the same pointer is the same key or section.
/// @{

/// METHOD of a key: one of the values that begin with VELHLS_METHOD.
typedef int32_t velhls_method;

enum {
    VELHLS_METHOD_NONE = 0,       ///< "NONE"
    VELHLS_METHOD_AES_128 = 1,    ///< "AES-128"
    VELHLS_METHOD_SAMPLE_AES = 2  ///< "SAMPLE-AES"
};

/// A key of a playlist: EXT-X-KEY or EXT-X-SESSION-KEY.
typedef struct velhls_key velhls_key;

/// What a key says (VELHLSProtectionData).
typedef struct velhls_key_info {
    size_t size;              ///< of this structure
    velhls_method method;     ///< METHOD
    velhls_string uri;        ///< URI, not resolved; empty for VELHLS_METHOD_NONE
    velhls_string iv;         ///< IV as it was written; empty when absent
    velhls_string format;     ///< KEYFORMAT; empty when absent
    const int32_t* versions;  ///< KEYFORMATVERSIONS, as long as the playlist lives
    size_t version_count;     ///< the number of these
} velhls_key_info;

/// Fills `info`.
VELHLS_C_API velhls_status velhls_key_get(const velhls_key* key, velhls_key_info* info);

/// A media initialization section: EXT-X-MAP.
typedef struct velhls_map velhls_map;

/// What an EXT-X-MAP says (VELHLSMISMap).
typedef struct velhls_map_info {
    size_t size;                ///< of this structure
    velhls_string uri;          ///< URI, not resolved
    int32_t has_byte_range;     ///< BYTERANGE is there
    int64_t byte_range_length;  ///< bytes; 0 without one
    int64_t byte_range_offset;  ///< the first byte; -1 without one, and where it says none
} velhls_map_info;

/// Fills `info`.
VELHLS_C_API velhls_status velhls_map_get(const velhls_map* map, velhls_map_info* info);

/// @}

/// @name Documents
/// The text of a playlist, understood: every line of any text, of either kind or neither, whatever the models reject or
/// drop (VELHLSDocument). A document never changes.
/// @{

/// A document.
typedef struct velhls_document velhls_document;

/// Makes a document of any bytes whatever, which it copies. VELHLS_TOO_LARGE for 4 GiB or more.
VELHLS_C_API velhls_status velhls_document_new(const char* text, size_t length, velhls_document** document);

/// Frees a document. Edits, structures and lists that were made of it must be gone, or not be used any more but freed.
VELHLS_C_API void velhls_document_free(velhls_document* document);

/// The text as it was given: its bytes, as long as the document lives; null for a null document.
VELHLS_C_API const char* velhls_document_data(const velhls_document* document);

/// The number of its bytes; 0 for a null document.
VELHLS_C_API size_t velhls_document_length(const velhls_document* document);

/// What kind of playlist it is (VELHLSDocument::kind); VELHLS_KIND_NEITHER for a null document.
VELHLS_C_API velhls_kind velhls_document_kind(const velhls_document* document);

/// The number of lines; 0 for a null document.
VELHLS_C_API size_t velhls_document_line_count(const velhls_document* document);

/// What a line is: one of the values that begin with VELHLS_LINE.
typedef int32_t velhls_line_kind;

enum {
    VELHLS_LINE_BLANK = 0,    ///< nothing but white space
    VELHLS_LINE_URI = 1,      ///< anything that does not begin with "#"
    VELHLS_LINE_COMMENT = 2,  ///< begins with "#"
    VELHLS_LINE_TAG = 3       ///< begins with "#EXT"
};

/// One line (VELHLSLine). Its texts live as long as the document.
typedef struct velhls_line {
    size_t size;            ///< of this structure
    velhls_line_kind kind;  ///< what it is
    size_t number;          ///< counted from 1
    size_t offset;          ///< where it begins in the text
    velhls_string text;     ///< the whole line without its end
    velhls_string ending;   ///< "\n", "\r\n", or nothing
    velhls_string name;     ///< of a tag, and of a vendor's line, the name without "#"; otherwise empty
    velhls_string value;    ///< what follows the colon; the URI of a URI line; the text of a comment
    int32_t has_colon;      ///< a colon follows the name
    int32_t is_known;       ///< the format has a tag of this name
} velhls_line;

/// Fills `line` with the line of this number, counted from 1. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_document_line(const velhls_document* document, size_t number,
                                                velhls_line* line);

/// The number of the line that holds the byte at this offset; the last line for the end of the text and beyond; 0 when there
/// are no lines, and for a null document.
VELHLS_C_API size_t velhls_document_line_at(const velhls_document* document, size_t offset);

/// The attributes of one line.
typedef struct velhls_attributes velhls_attributes;

/// How an attribute breaks the grammar: one of the values that begin with VELHLS_FAULT.
typedef int32_t velhls_fault;

enum {
    VELHLS_FAULT_NONE = 0,              ///< it does not
    VELHLS_FAULT_NAME_MISSING = 1,      ///< "=1", or nothing between two commas
    VELHLS_FAULT_NAME_INVALID = 2,      ///< a name with other characters than A-Z, 0-9 and "-"
    VELHLS_FAULT_EQUALS_MISSING = 3,    ///< no "=" before the next comma
    VELHLS_FAULT_VALUE_MISSING = 4,     ///< nothing after the "="
    VELHLS_FAULT_WHITE_SPACE = 5,       ///< around a name or a value, or inside of one without quotes
    VELHLS_FAULT_QUOTE_UNCLOSED = 6,    ///< no second quote in the line
    VELHLS_FAULT_TEXT_AFTER_QUOTE = 7,  ///< something between the second quote and the comma
    VELHLS_FAULT_QUOTE_IN_VALUE = 8     ///< a quote inside of a value that does not begin with one
};

/// One attribute (VELHLSAttribute). Its texts live as long as the document.
typedef struct velhls_attribute {
    size_t size;                  ///< of this structure
    velhls_string name;           ///< without white space around it
    velhls_string value;          ///< without its quotes
    velhls_string written_value;  ///< as it is written: with its quotes
    int32_t is_quoted;            ///< the value begins with a quote
    velhls_fault fault;           ///< the first thing that breaks the grammar
    size_t column;                ///< the byte of the line at which the attribute begins, counted from 1
} velhls_attribute;

/// Makes the list of a line's attributes, by RFC 8216, section 4.2, whether or not the format says that the line has any.
/// Of two with one name both are there. VELHLS_OUT_OF_RANGE for a line that is not there.
VELHLS_C_API velhls_status velhls_attributes_new(const velhls_document* document, size_t line,
                                                 velhls_attributes** attributes);

/// Frees a list of attributes.
VELHLS_C_API void velhls_attributes_free(velhls_attributes* attributes);

/// The number of attributes; 0 for a null list.
VELHLS_C_API size_t velhls_attributes_count(const velhls_attributes* attributes);

/// Fills `attribute` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_attributes_get(const velhls_attributes* attributes, size_t index,
                                                 velhls_attribute* attribute);

/// Fills `attribute` with the first one of this name. VELHLS_NOT_FOUND without one.
VELHLS_C_API velhls_status velhls_attributes_find(const velhls_attributes* attributes, const char* name,
                                                  size_t name_length, velhls_attribute* attribute);

/// All URIs of a document.
typedef struct velhls_uris velhls_uris;

/// A URI: a whole line, or the value of an attribute (VELHLSUri). Its texts live as long as the document.
typedef struct velhls_uri {
    size_t size;              ///< of this structure
    size_t line;              ///< counted from 1
    velhls_string text;       ///< the URI itself: no quotes, no white space around it
    velhls_string attribute;  ///< the name of the attribute; empty for a URI line
} velhls_uri;

/// Makes the list of all URIs, in their order.
VELHLS_C_API velhls_status velhls_uris_new(const velhls_document* document, velhls_uris** uris);

/// Frees a list of URIs.
VELHLS_C_API void velhls_uris_free(velhls_uris* uris);

/// The number of URIs; 0 for a null list.
VELHLS_C_API size_t velhls_uris_count(const velhls_uris* uris);

/// Fills `uri` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_uris_get(const velhls_uris* uris, size_t index, velhls_uri* uri);

/// @}

/// @name Structures
/// Which lines of a document make its variants and its segments, by RFC 8216 and of any text (VELHLSStructure).
/// @{

/// A structure. It looks into the document, which must outlive it.
typedef struct velhls_structure velhls_structure;

/// Finds the structure of a document.
VELHLS_C_API velhls_status velhls_structure_new(const velhls_document* document,
                                                velhls_structure** structure);

/// Frees a structure.
VELHLS_C_API void velhls_structure_free(velhls_structure* structure);

/// A segment by its lines, which count from 1; 0 stands for none (VELHLSStructure::Segment).
typedef struct velhls_structure_segment {
    size_t size;                      ///< of this structure
    size_t first_line;                ///< its first tag, or else its URI
    size_t last_line;                 ///< its URI line, or its last tag
    size_t uri_line;                  ///< its URI line; 0 when the text ends before one
    size_t duration_line;             ///< its EXTINF
    size_t byte_range_line;           ///< its EXT-X-BYTERANGE
    size_t date_line;                 ///< its own EXT-X-PROGRAM-DATE-TIME
    const uint32_t* key_lines;        ///< the lines of the keys in force, one for each KEYFORMAT
    size_t key_line_count;            ///< the number of these
    size_t map_line;                  ///< the line of the EXT-X-MAP in force
    size_t date_line_in_force;        ///< the last EXT-X-PROGRAM-DATE-TIME, its own or an earlier one
    double duration;                  ///< seconds
    double start_time;                ///< the durations of the segments before it, summed up: seconds
    uint64_t media_sequence;          ///< media sequence number
    uint64_t discontinuity_sequence;  ///< discontinuity sequence number
    int32_t has_byte_range_offset;    ///< it is known where its byte range begins
    int32_t has_date;                 ///< its date is known
    uint64_t byte_range_offset;       ///< where its byte range begins
    int64_t date;                     ///< microseconds since the Unix epoch
} velhls_structure_segment;

/// A variant by its lines, which count from 1 (VELHLSStructure::Variant).
typedef struct velhls_structure_variant {
    size_t size;      ///< of this structure
    size_t tag_line;  ///< its EXT-X-STREAM-INF
    size_t uri_line;  ///< its URI line; 0 when there is none
} velhls_structure_variant;

/// The number of segments; 0 for a null structure.
VELHLS_C_API size_t velhls_structure_segment_count(const velhls_structure* structure);

/// Fills `segment` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_structure_get_segment(const velhls_structure* structure, size_t index,
                                                        velhls_structure_segment* segment);

/// Stores the place of the segment that a line belongs to. VELHLS_NOT_FOUND when it belongs to none.
VELHLS_C_API velhls_status velhls_structure_segment_of(const velhls_structure* structure, size_t line,
                                                       size_t* index);

/// The number of variants; 0 for a null structure. I-frame variants are lines of their own, and not among them.
VELHLS_C_API size_t velhls_structure_variant_count(const velhls_structure* structure);

/// Fills `variant` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_structure_get_variant(const velhls_structure* structure, size_t index,
                                                        velhls_structure_variant* variant);

/// Stores the place of the variant that a line belongs to. VELHLS_NOT_FOUND when it belongs to none.
VELHLS_C_API velhls_status velhls_structure_variant_of(const velhls_structure* structure, size_t line,
                                                       size_t* index);

/// @}

/// @name Edits
/// A list of changes of one document, which touch no other byte. Each function adds to the list, or leaves it as it was and gives
/// VELHLS_OUT_OF_RANGE for a line that is not there, and VELHLS_REFUSED with the reason for what the line cannot be given.
/// @{

/// Edits of a document, which must outlive them.
typedef struct velhls_edits velhls_edits;

/// Makes an empty list of edits.
VELHLS_C_API velhls_status velhls_edits_new(const velhls_document* document, velhls_edits** edits);

/// Frees a list of edits.
VELHLS_C_API void velhls_edits_free(velhls_edits* edits);

/// Sets, adds and removes so many attributes of a line: `names[i]` becomes `values[i]`, and is removed where the data of that
/// is null. One edit: several calls for one line overlap. Quotes are written as the format wants them
/// (VELHLSDocument::changeAttributes).
VELHLS_C_API velhls_status velhls_edits_change_attributes(velhls_edits* edits, size_t line,
                                                          const velhls_string* names,
                                                          const velhls_string* values, size_t count,
                                                          velhls_error** error);

/// Replaces what follows the colon of a tag; adds the colon where there is none.
VELHLS_C_API velhls_status velhls_edits_replace_value(velhls_edits* edits, size_t line, const char* value,
                                                      size_t length, velhls_error** error);

/// Replaces the URI of this place in the list of the same document's URIs. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_edits_replace_uri(velhls_edits* edits, const velhls_uris* uris,
                                                    size_t index, const char* uri, size_t length,
                                                    velhls_error** error);

/// Inserts lines, with line feeds between them, before a line, or after the last one for the number that follows its own.
/// They get the line end of their neighbours.
VELHLS_C_API velhls_status velhls_edits_insert_before(velhls_edits* edits, size_t line, const char* text,
                                                      size_t length);

/// The same after a line; before the first one for the number 0.
VELHLS_C_API velhls_status velhls_edits_insert_after(velhls_edits* edits, size_t line, const char* text,
                                                     size_t length);

/// Removes the lines from the first to the last of these, with their ends.
VELHLS_C_API velhls_status velhls_edits_remove_lines(velhls_edits* edits, size_t first, size_t last);

/// Removes the segment of this place in the structure of the same document: its URI and the tags that hold for it alone
/// (VELHLSStructure::remove). VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_edits_remove_segment(velhls_edits* edits, const velhls_structure* structure,
                                                       size_t index);

/// Removes the variant of this place in the structure of the same document: its tag and its URI. VELHLS_OUT_OF_RANGE where there
/// is none.
VELHLS_C_API velhls_status velhls_edits_remove_variant(velhls_edits* edits, const velhls_structure* structure,
                                                       size_t index);

/// Replaces `length` bytes of the text from `offset` on by any bytes: an edit of the caller's own. VELHLS_OUT_OF_RANGE where
/// it goes beyond the text.
VELHLS_C_API velhls_status velhls_edits_replace_bytes(velhls_edits* edits, size_t offset, size_t length,
                                                      const char* replacement, size_t replacement_length);

/// One edit (VELHLSEdit).
typedef struct velhls_edit {
    size_t size;                ///< of this structure
    size_t offset;              ///< where it begins in the document's text
    size_t length;              ///< how many bytes it replaces
    velhls_string replacement;  ///< what comes in their place; of velhls_edits good until an edit is added
} velhls_edit;

/// The number of edits; 0 for a null list.
VELHLS_C_API size_t velhls_edits_count(const velhls_edits* edits);

/// Fills `edit` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_edits_get(const velhls_edits* edits, size_t index, velhls_edit* edit);

/// Makes the text with all edits done: without any, that of the document. VELHLS_REFUSED when two of them overlap, which the
/// error names by their places.
VELHLS_C_API velhls_status velhls_edits_apply(const velhls_edits* edits, velhls_text** text,
                                              velhls_error** error);

/// @}

/// @name Media playlists
/// @{

/// A media playlist (VELHLSMediaStream). It is read, and not changed: edits are made in a document.
typedef struct velhls_media velhls_media;

/// Parses a media playlist. VELHLS_REJECTED with the reason when the library rejects it. The text need not outlive the
/// playlist.
VELHLS_C_API velhls_status velhls_media_parse(const char* text, size_t length, velhls_media** media,
                                              velhls_error** error);

/// The same of a document's text; velhls_media_segment_lines then tells the lines of each segment. The document need not
/// outlive the playlist.
VELHLS_C_API velhls_status velhls_media_parse_document(const velhls_document* document, velhls_media** media,
                                                       velhls_error** error);

/// Frees a media playlist.
VELHLS_C_API void velhls_media_free(velhls_media* media);

/// EXT-X-PLAYLIST-TYPE: one of the values that begin with VELHLS_TYPE.
typedef int32_t velhls_playlist_type;

enum {
    VELHLS_TYPE_NONE = 0,   ///< no such tag
    VELHLS_TYPE_EVENT = 1,  ///< "EVENT"
    VELHLS_TYPE_VOD = 2     ///< "VOD"
};

/// What a media playlist says of itself (VELHLSMediaStream).
typedef struct velhls_media_info {
    size_t size;                         ///< of this structure
    int32_t has_header;                  ///< "#EXTM3U" was read
    int32_t version;                     ///< EXT-X-VERSION; 1 without one
    double target_duration;              ///< seconds
    velhls_playlist_type playlist_type;  ///< EXT-X-PLAYLIST-TYPE
    int32_t end_list;                    ///< EXT-X-ENDLIST was read
    int64_t media_sequence;              ///< EXT-X-MEDIA-SEQUENCE
    int64_t discontinuity_sequence;      ///< EXT-X-DISCONTINUITY-SEQUENCE
    int32_t i_frames_only;               ///< EXT-X-I-FRAMES-ONLY was read
    int32_t independent_segments;        ///< EXT-X-INDEPENDENT-SEGMENTS was read
    double start_time_offset;            ///< TIME-OFFSET of EXT-X-START in seconds; 0 when there is none
    int32_t start_precise;               ///< PRECISE=YES of EXT-X-START
    int32_t discontinuity_seen;          ///< a segment whose first tag was EXT-X-DISCONTINUITY was read
    size_t segment_count;                ///< the number of segments
    size_t variable_count;               ///< the number of variables of EXT-X-DEFINE
} velhls_media_info;

/// Fills `info`.
VELHLS_C_API velhls_status velhls_media_get(const velhls_media* media, velhls_media_info* info);

/// Stores name and value of the variable of this place, counted from 0, in the order of the names. They live as long as the
/// playlist. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_media_variable(const velhls_media* media, size_t index, velhls_string* name,
                                                 velhls_string* value);

/// One media segment (VELHLSMediaSegment). Its texts live as long as the playlist.
typedef struct velhls_segment {
    size_t size;                      ///< of this structure
    velhls_string uri;                ///< not resolved
    velhls_string title;              ///< of EXTINF, with the comma before it; empty without one
    double duration;                  ///< seconds
    double start_time;                ///< the durations of the segments before it, summed up: seconds
    double program_date_time;         ///< seconds since the Unix epoch; 0 means none
    uint64_t media_sequence;          ///< media sequence number
    uint64_t discontinuity_sequence;  ///< discontinuity sequence number
    int32_t discontinuity;            ///< EXT-X-DISCONTINUITY stands before it
    int32_t has_byte_range;      ///< EXT-X-BYTERANGE, or the range in the URI (vendor extension), is there
    int64_t byte_range_length;   ///< bytes; 0 without one
    int64_t byte_range_offset;   ///< the first byte; -1 without one, and where it says none
    const velhls_key* key;       ///< the key in force, lent by the playlist; null when there is none
    const velhls_map* map;       ///< the initialization section in force, likewise
    velhls_string cue_out;       ///< the text after EXT-X-CUE-OUT (vendor extension)
    velhls_string cue_out_cont;  ///< the text after EXT-X-CUE-OUT-CONT (vendor extension)
    int32_t cue_in;              ///< EXT-X-CUE-IN stood among its tags (vendor extension)
} velhls_segment;

/// The number of segments; 0 for a null playlist.
VELHLS_C_API size_t velhls_media_segment_count(const velhls_media* media);

/// Fills `segment` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_media_segment(const velhls_media* media, size_t index,
                                                velhls_segment* segment);

/// Stores the first and the last line of the document that a segment was made of (VELHLSRecordLines). VELHLS_NOT_FOUND when
/// the playlist was not parsed of a document, VELHLS_OUT_OF_RANGE for a segment that is not there.
VELHLS_C_API velhls_status velhls_media_segment_lines(const velhls_media* media, size_t index, size_t* first,
                                                      size_t* last);

/// Writes the playlist as the models' `render` does (VELHLSMediaStream::render).
VELHLS_C_API velhls_status velhls_media_render(const velhls_media* media, velhls_text** text);

/// What velhls_media_write and velhls_master_write leave to choose (VELHLSWriterOptions). Begin with VELHLS_INIT, which adds
/// nothing that the model does not hold but leaves cue markers out.
typedef struct velhls_write_options {
    size_t size;                            ///< of this structure
    int32_t cue_markers;                    ///< media: write EXT-X-CUE-OUT, -CONT and -IN (vendor extensions)
    int32_t every_date;                     ///< media: write every date that is known
    int32_t clear_initialization_sections;  ///< media: the initialization sections are not encrypted
    int32_t no_closed_captions;             ///< master: say CLOSED-CAPTIONS=NONE
    int32_t nominal_bitrates;               ///< master: write ZOR-STREAM-INF (vendor extension)
} velhls_write_options;

/// Writes the playlist as RFC 8216 wants it (VELHLSPlaylistWriter::write); VELHLS_REFUSED with the reason for what cannot be
/// written so. For null `options` cue markers are written, and nothing else is added.
VELHLS_C_API velhls_status velhls_media_write(const velhls_media* media, const velhls_write_options* options,
                                              velhls_text** text, velhls_error** error);

/// @}

/// @name Columns of a media playlist
/// One value of each of `count` segments from `first` on, in one call: into `values`, which has room for as many.
/// VELHLS_OUT_OF_RANGE, with nothing written, where there are not so many. `velhls_media_durations(media, 0,
/// velhls_media_segment_count(media), values)` gives all of them.
/// @{

/// Seconds.
VELHLS_C_API velhls_status velhls_media_durations(const velhls_media* media, size_t first, size_t count,
                                                  double* values);

/// Seconds on the playlist's own timeline.
VELHLS_C_API velhls_status velhls_media_start_times(const velhls_media* media, size_t first, size_t count,
                                                    double* values);

/// Seconds since the Unix epoch; 0 means none.
VELHLS_C_API velhls_status velhls_media_program_date_times(const velhls_media* media, size_t first,
                                                           size_t count, double* values);

/// Media sequence numbers.
VELHLS_C_API velhls_status velhls_media_sequences(const velhls_media* media, size_t first, size_t count,
                                                  uint64_t* values);

/// Discontinuity sequence numbers.
VELHLS_C_API velhls_status velhls_media_discontinuity_sequences(const velhls_media* media, size_t first,
                                                                size_t count, uint64_t* values);

/// 1 where EXT-X-DISCONTINUITY stands before the segment, 0 elsewhere.
VELHLS_C_API velhls_status velhls_media_discontinuities(const velhls_media* media, size_t first, size_t count,
                                                        uint8_t* values);

/// Lengths and offsets of byte ranges, in two arrays: -1 for a length where there is no range, and for an offset where there is
/// none.
VELHLS_C_API velhls_status velhls_media_byte_ranges(const velhls_media* media, size_t first, size_t count,
                                                    int64_t* lengths, int64_t* offsets);

/// URIs, which live as long as the playlist.
VELHLS_C_API velhls_status velhls_media_uris(const velhls_media* media, size_t first, size_t count,
                                             velhls_string* values);

/// All these URIs as one text, one directly after the other, and where each of them ends in it: for languages that cannot look
/// into the library's memory at no cost.
VELHLS_C_API velhls_status velhls_media_joined_uris(const velhls_media* media, size_t first, size_t count,
                                                    velhls_text** text, size_t* ends);

/// Titles with the comma before them, which live as long as the playlist.
VELHLS_C_API velhls_status velhls_media_titles(const velhls_media* media, size_t first, size_t count,
                                               velhls_string* values);

/// The keys in force, lent by the playlist; null where there is none.
VELHLS_C_API velhls_status velhls_media_keys(const velhls_media* media, size_t first, size_t count,
                                             const velhls_key** values);

/// The initialization sections in force, lent by the playlist; null where there is none.
VELHLS_C_API velhls_status velhls_media_maps(const velhls_media* media, size_t first, size_t count,
                                             const velhls_map** values);

/// @}

/// @name Master playlists
/// @{

/// A master playlist (VELHLSParsedManifest). It is read, and not changed: edits are made in a document.
typedef struct velhls_master velhls_master;

/// Parses a master playlist. VELHLS_REJECTED with the reason when the library rejects it. The text need not outlive the
/// playlist.
VELHLS_C_API velhls_status velhls_master_parse(const char* text, size_t length, velhls_master** master,
                                               velhls_error** error);

/// The same of a document's text; velhls_master_variant_lines and velhls_master_rendition_lines then tell the lines of each
/// record. The document need not outlive the playlist.
VELHLS_C_API velhls_status velhls_master_parse_document(const velhls_document* document,
                                                        velhls_master** master, velhls_error** error);

/// Frees a master playlist.
VELHLS_C_API void velhls_master_free(velhls_master* master);

/// What a master playlist says of itself (VELHLSParsedManifest).
typedef struct velhls_master_info {
    size_t size;                   ///< of this structure
    int32_t has_header;            ///< "#EXTM3U" was read
    int32_t version;               ///< EXT-X-VERSION; 1 without one
    int32_t independent_segments;  ///< EXT-X-INDEPENDENT-SEGMENTS was read
    int32_t start_precise;         ///< PRECISE=YES of EXT-X-START
    double start_time_offset;      ///< TIME-OFFSET of EXT-X-START in seconds; -1 when there is none
    size_t variant_count;          ///< the number of variants, I-frame variants among them
    size_t i_frame_variant_count;  ///< the number of I-frame variants, which come last
    size_t rendition_count;        ///< the number of renditions
    size_t session_data_count;     ///< the number of EXT-X-SESSION-DATA
    size_t session_key_count;      ///< the number of EXT-X-SESSION-KEY
} velhls_master_info;

/// Fills `info`.
VELHLS_C_API velhls_status velhls_master_get(const velhls_master* master, velhls_master_info* info);

/// One variant (VELHLSMediaVariant). Its texts live as long as the playlist.
typedef struct velhls_variant {
    size_t size;                          ///< of this structure
    velhls_string uri;                    ///< not resolved
    uint64_t bandwidth;                   ///< BANDWIDTH: peak bits per second
    uint64_t average_bandwidth;           ///< AVERAGE-BANDWIDTH: bits per second; 0 when absent
    velhls_string codecs;                 ///< CODECS, not split; empty when absent
    velhls_string resolution;             ///< RESOLUTION as it was written; empty when absent
    uint32_t program_id;                  ///< PROGRAM-ID; 0 when absent
    int32_t is_i_frame;                   ///< EXT-X-I-FRAME-STREAM-INF
    velhls_string audio_group;            ///< AUDIO; the data is null when absent
    velhls_string video_group;            ///< VIDEO; the data is null when absent
    velhls_string subtitles_group;        ///< SUBTITLES; the data is null when absent
    velhls_string closed_captions_group;  ///< CLOSED-CAPTIONS; the data is null when absent, and for NONE
    uint64_t nominal_video_bitrate;  ///< of ZOR-STREAM-INF (vendor extension): bits per second; 0 without one
    uint64_t nominal_audio_bitrate;  ///< likewise
} velhls_variant;

/// The number of variants, I-frame variants among them; 0 for a null playlist.
VELHLS_C_API size_t velhls_master_variant_count(const velhls_master* master);

/// Fills `variant` with that of this place, counted from 0: the EXT-X-STREAM-INF variants in the order of the playlist, then
/// the I-frame variants by bandwidth. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_master_variant(const velhls_master* master, size_t index,
                                                 velhls_variant* variant);

/// Stores the first and the last line of the document that a variant was made of. VELHLS_NOT_FOUND when the playlist was not
/// parsed of a document, VELHLS_OUT_OF_RANGE for a variant that is not there.
VELHLS_C_API velhls_status velhls_master_variant_lines(const velhls_master* master, size_t index,
                                                       size_t* first, size_t* last);

/// TYPE of a rendition: one of the values that begin with VELHLS_RENDITION.
typedef int32_t velhls_rendition_type;

enum {
    VELHLS_RENDITION_AUDIO = 0,           ///< "AUDIO"
    VELHLS_RENDITION_VIDEO = 1,           ///< "VIDEO"
    VELHLS_RENDITION_SUBTITLES = 2,       ///< "SUBTITLES"
    VELHLS_RENDITION_CLOSED_CAPTIONS = 3  ///< "CLOSED-CAPTIONS"
};

/// One rendition (VELHLSMediaStreamRendition). Its texts live as long as the playlist.
typedef struct velhls_rendition {
    size_t size;                     ///< of this structure
    velhls_rendition_type type;      ///< TYPE
    int32_t is_default;              ///< DEFAULT
    int32_t auto_select;             ///< AUTOSELECT
    int32_t forced;                  ///< FORCED
    velhls_string uri;               ///< not resolved; empty when there is none
    velhls_string group_id;          ///< GROUP-ID
    velhls_string name;              ///< NAME
    velhls_string language;          ///< LANGUAGE; empty when absent
    velhls_string assoc_language;    ///< ASSOC-LANGUAGE; empty when absent
    velhls_string instream_id;       ///< INSTREAM-ID; empty when absent
    velhls_string audio_track_type;  ///< AUDIO-TRACK-TYPE (vendor extension); empty when absent
    size_t characteristic_count;     ///< the number of CHARACTERISTICS: velhls_master_characteristics
} velhls_rendition;

/// The number of renditions; 0 for a null playlist.
VELHLS_C_API size_t velhls_master_rendition_count(const velhls_master* master);

/// Fills `rendition` with that of this place, counted from 0: by type, GROUP-ID and NAME. VELHLS_OUT_OF_RANGE where there is
/// none.
VELHLS_C_API velhls_status velhls_master_rendition(const velhls_master* master, size_t index,
                                                   velhls_rendition* rendition);

/// Stores the first and the last line of the document that a rendition was made of. VELHLS_NOT_FOUND when the playlist was not
/// parsed of a document, VELHLS_OUT_OF_RANGE for a rendition that is not there.
VELHLS_C_API velhls_status velhls_master_rendition_lines(const velhls_master* master, size_t index,
                                                         size_t* first, size_t* last);

/// Stores the CHARACTERISTICS of the rendition of this place, sorted, in `values`, which has room for `count` of them: as many as
/// velhls_rendition::characteristic_count says, or VELHLS_OUT_OF_RANGE. They live as long as the playlist.
VELHLS_C_API velhls_status velhls_master_characteristics(const velhls_master* master, size_t index,
                                                         velhls_string* values, size_t count);

/// One EXT-X-SESSION-DATA (VELHLSManifestSessionData). Its texts live as long as the playlist.
typedef struct velhls_session_data {
    size_t size;             ///< of this structure
    velhls_string data_id;   ///< DATA-ID
    velhls_string value;     ///< VALUE; empty when the data is given by URI
    velhls_string uri;       ///< URI; empty when the data is given by VALUE
    velhls_string language;  ///< LANGUAGE; empty when absent
} velhls_session_data;

/// Fills `data` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_master_session_data(const velhls_master* master, size_t index,
                                                      velhls_session_data* data);

/// Stores the session key of this place, counted from 0, which the playlist lends. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_master_session_key(const velhls_master* master, size_t index,
                                                     const velhls_key** key);

/// Writes the playlist as the models' `render` does (VELHLSParsedManifest::render).
VELHLS_C_API velhls_status velhls_master_render(const velhls_master* master, velhls_text** text);

/// Writes the playlist as RFC 8216 wants it, as velhls_media_write does.
VELHLS_C_API velhls_status velhls_master_write(const velhls_master* master,
                                               const velhls_write_options* options, velhls_text** text,
                                               velhls_error** error);

/// @}

/// @name Columns of a master playlist
/// As those of a media playlist, of its variants and its renditions.
/// @{

/// URIs of variants, which live as long as the playlist.
VELHLS_C_API velhls_status velhls_master_variant_uris(const velhls_master* master, size_t first, size_t count,
                                                      velhls_string* values);

/// BANDWIDTH of variants: bits per second.
VELHLS_C_API velhls_status velhls_master_bandwidths(const velhls_master* master, size_t first, size_t count,
                                                    uint64_t* values);

/// AVERAGE-BANDWIDTH of variants: bits per second; 0 when absent.
VELHLS_C_API velhls_status velhls_master_average_bandwidths(const velhls_master* master, size_t first,
                                                            size_t count, uint64_t* values);

/// CODECS of variants, which live as long as the playlist.
VELHLS_C_API velhls_status velhls_master_codecs(const velhls_master* master, size_t first, size_t count,
                                                velhls_string* values);

/// RESOLUTION of variants, as it was written; they live as long as the playlist.
VELHLS_C_API velhls_status velhls_master_resolutions(const velhls_master* master, size_t first, size_t count,
                                                     velhls_string* values);

/// URIs of renditions, which live as long as the playlist.
VELHLS_C_API velhls_status velhls_master_rendition_uris(const velhls_master* master, size_t first,
                                                        size_t count, velhls_string* values);

/// @}

/// @name Findings
/// @{

/// By whose rules a text is checked: values that begin with VELHLS_PROFILE, joined by `|` where several are asked for.
typedef uint32_t velhls_profiles;

enum {
    VELHLS_PROFILE_RFC8216 = 1,     ///< RFC 8216
    VELHLS_PROFILE_RFC8216BIS = 2,  ///< RFC 8216 as its successor changes it
    VELHLS_PROFILE_APPLE = 4,       ///< Apple's authoring rules
    VELHLS_PROFILE_LIBRARY = 8      ///< what the models reject, drop or change
};

/// How much a finding weighs: one of the values that begin with VELHLS_SEVERITY. More is a larger number.
typedef int32_t velhls_severity;

enum {
    VELHLS_SEVERITY_NOTE = 0,     ///< what is recommended, or told for what it is worth
    VELHLS_SEVERITY_WARNING = 1,  ///< what should be otherwise
    VELHLS_SEVERITY_ERROR = 2     ///< what must be otherwise
};

/// One finding (VELHLSFinding). Its texts live as long as what it was asked of.
typedef struct velhls_finding {
    size_t size;               ///< of this structure
    velhls_severity severity;  ///< how much it weighs
    velhls_string rule;        ///< the stable name of the rule
    velhls_string uri;         ///< of a presentation, the text that it stands in; otherwise empty
    size_t line;               ///< counted from 1
    size_t column;             ///< the byte in that line, counted from 1
    size_t length;             ///< the number of bytes; 0 where something is missing
    velhls_string message;     ///< what was expected, and what was seen
    velhls_string source;      ///< where the rule comes from
    velhls_string profile;     ///< "rfc8216", "rfc8216bis", "apple" or "library"
    velhls_string clause;      ///< "4.3.2.1"; empty where there is none
    velhls_string level;       ///< "MUST", "SHOULD"…; empty where there is no clause
    size_t related_count;      ///< the number of other places: velhls_findings_related
    size_t suppressed;         ///< how many more findings of this rule are not listed
    size_t fix_count;          ///< the number of fixes, the best first: velhls_findings_fix
} velhls_finding;

/// A second place that a finding speaks of (VELHLSRelatedPlace). Its texts live as long as what it was asked of.
typedef struct velhls_related_place {
    size_t size;            ///< of this structure
    velhls_string uri;      ///< the text that it is in; empty for that of the finding itself
    size_t line;            ///< counted from 1
    size_t column;          ///< the byte in that line, counted from 1
    size_t length;          ///< the number of bytes; 0 where something is missing
    velhls_string message;  ///< what stands there, in a few words
} velhls_related_place;

/// The findings of a report or a comparison, which lends them. Those of a comparison and of a presentation have no fixes.
typedef struct velhls_findings velhls_findings;

/// The number of findings; 0 for null.
VELHLS_C_API size_t velhls_findings_count(const velhls_findings* findings);

/// Fills `finding` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_findings_get(const velhls_findings* findings, size_t index,
                                               velhls_finding* finding);

/// Fills `place` with one of the other places of a finding, both counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_findings_related(const velhls_findings* findings, size_t index,
                                                   size_t related, velhls_related_place* place);

/// What a fix does to what the playlist says: one of the values that begin with VELHLS_FIX. A larger number dares more.
typedef int32_t velhls_fix_class;

enum {
    VELHLS_FIX_SAFE = 0,   ///< nothing: it means the same
    VELHLS_FIX_LOSSY = 1,  ///< it takes away something that the playlist says, as the sentence tells
    VELHLS_FIX_GUESS = 2   ///< it says something that the playlist does not say, and that may be wrong
};

/// A way to mend what a finding found (VELHLSFix). Its text lives as long as what it was asked of.
typedef struct velhls_fix {
    size_t size;                 ///< of this structure
    velhls_fix_class fix_class;  ///< what it does to what the playlist says
    velhls_string sentence;      ///< what it does, in a few words that begin with a verb
    size_t edit_count;           ///< the number of its edits, at least 1: velhls_findings_fix_edit
} velhls_fix;

/// Fills `fix` with one of the fixes of a finding, both counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_findings_fix(const velhls_findings* findings, size_t index, size_t fix,
                                               velhls_fix* found);

/// Fills `found` with one of the edits of a fix, all three counted from 0; they come in the order of their places in the text that was
/// checked, and belong together: a part of them mends nothing. VELHLS_OUT_OF_RANGE where there is none. Its text lives as long
/// as what it was asked of; velhls_edits_replace_bytes takes it.
VELHLS_C_API velhls_status velhls_findings_fix_edit(const velhls_findings* findings, size_t index, size_t fix,
                                                    size_t edit, velhls_edit* found);

/// What a check answers.
typedef struct velhls_report velhls_report;

/// What a check is asked (VELHLSDiagnostics::Options). Begin with VELHLS_INIT, which asks for no profile: then only whether the
/// models reject the text is told.
typedef struct velhls_check_options {
    size_t size;               ///< of this structure
    velhls_profiles profiles;  ///< by whose rules the text is checked
    velhls_kind kind;          ///< what it is read as; VELHLS_KIND_NEITHER for what its tags tell
    int32_t fixes;             ///< findings have their fixes, which cost nothing otherwise
} velhls_check_options;

/// Checks a text (VELHLSDiagnostics::check). For null `options` it is checked by RFC 8216, as what its tags tell, without fixes.
/// The text need not outlive the report. VELHLS_INVALID_ARGUMENT for a profile or a kind that is none, VELHLS_TOO_LARGE for
/// 4 GiB or more.
VELHLS_C_API velhls_status velhls_check(const char* text, size_t length, const velhls_check_options* options,
                                        velhls_report** report);

/// Frees a report.
VELHLS_C_API void velhls_report_free(velhls_report* report);

/// What the text was read as; VELHLS_KIND_NEITHER when it is neither kind of playlist, and for a null report.
VELHLS_C_API velhls_kind velhls_report_kind(const velhls_report* report);

/// The findings, lent by the report; null for a null report.
VELHLS_C_API const velhls_findings* velhls_report_findings(const velhls_report* report);

/// Fills `reason` with why the models reject the text, whatever the profiles. VELHLS_NOT_FOUND when they accept it, and for
/// the report of a presentation. Its texts live as long as the report.
VELHLS_C_API velhls_status velhls_report_rejection(const velhls_report* report, velhls_reason* reason);

/// One rule (VELHLSRule). Its texts live as long as the program.
typedef struct velhls_rule {
    size_t size;                   ///< of this structure
    velhls_severity severity;      ///< how much its findings weigh
    int32_t is_lost_when_written;  ///< `render` leaves out what the rule finds
    velhls_string id;              ///< its stable name
    velhls_string summary;         ///< one sentence: what it finds
    velhls_string expected;        ///< what its findings say was expected
    velhls_string source;          ///< where it comes from
    velhls_string profile;         ///< "rfc8216", "rfc8216bis", "apple" or "library"
    velhls_string clause;          ///< "4.3.2.1"; empty where there is none
    velhls_string level;           ///< "MUST", "SHOULD"…; empty where there is no clause
} velhls_rule;

/// Fills `rule` with the one of this name (VELHLSDiagnostics::ruleNamed). VELHLS_NOT_FOUND without one.
VELHLS_C_API velhls_status velhls_rule_named(const char* name, size_t length, velhls_rule* rule);

/// @}

/// @name Mending
/// A text becomes one that has fewer findings: their fixes are taken, and no other byte changes (VELHLSFixes).
/// @{

/// What mending a text answers.
typedef struct velhls_mended velhls_mended;

/// What is to be mended (VELHLSFixes::Options). Begin with VELHLS_INIT, which asks for no profile and for safe fixes alone.
typedef struct velhls_fix_options {
    size_t size;               ///< of this structure
    velhls_profiles profiles;  ///< whose findings are mended
    velhls_kind kind;          ///< what the text is read as; VELHLS_KIND_NEITHER for what its tags tell
    int32_t lossy;             ///< fixes that lose something are taken, too
    int32_t guess;             ///< fixes that say something new are taken, too
} velhls_fix_options;

/// Mends what the profiles find (VELHLSFixes::apply): takes every fix whose class is asked for and whose edits touch no other's,
/// reads again, and goes on until nothing is left to take. For null `options` the safe fixes of RFC 8216 are taken. A text without
/// anything to mend is given back as it is; that is VELHLS_OK, too. The text need not outlive what is made. VELHLS_INVALID_ARGUMENT
/// for a profile or a kind that is none, VELHLS_TOO_LARGE for 4 GiB or more.
VELHLS_C_API velhls_status velhls_fix_text(const char* text, size_t length, const velhls_fix_options* options,
                                           velhls_mended** mended);

/// Makes what the models reject acceptable, as far as that goes without changing what the playlist means
/// (VELHLSFixes::forModels); what they accept is given back as it is, and costs no more than their parse.
VELHLS_C_API velhls_status velhls_fix_for_models(const char* text, size_t length, velhls_mended** mended);

/// Frees what mending answered.
VELHLS_C_API void velhls_mended_free(velhls_mended* mended);

/// The whole text, mended as far as that went: its bytes, as long as `mended` lives; null for null.
VELHLS_C_API const char* velhls_mended_data(const velhls_mended* mended);

/// The number of its bytes; 0 for null.
VELHLS_C_API size_t velhls_mended_length(const velhls_mended* mended);

/// How many rounds took something; 0 for null. Of 64, the most there are, more may be left to take: mend the text again.
VELHLS_C_API size_t velhls_mended_rounds(const velhls_mended* mended);

/// The number of edits that make the mended text of the one that was given; 0 for null.
VELHLS_C_API size_t velhls_mended_edit_count(const velhls_mended* mended);

/// Fills `edit` with that of this place, counted from 0: they come in the order of their places in the text that was given, none touching
/// another. VELHLS_OUT_OF_RANGE where there is none. Its text lives as long as `mended`.
VELHLS_C_API velhls_status velhls_mended_edit(const velhls_mended* mended, size_t index, velhls_edit* edit);

/// One fix that was taken (VELHLSFixes::Done). Its texts live as long as what it was asked of.
typedef struct velhls_done {
    size_t size;                 ///< of this structure
    velhls_string rule;          ///< the rule whose finding it mended
    velhls_string profile;       ///< "rfc8216", "rfc8216bis", "apple" or "library"
    velhls_fix_class fix_class;  ///< what it did to what the playlist says
    velhls_string sentence;      ///< what it did, in a few words
    size_t line;                 ///< of its first edit, in the text that was given; counted from 1
} velhls_done;

/// The number of fixes that were taken: 0 if and only if there are no edits, and for null.
VELHLS_C_API size_t velhls_mended_done_count(const velhls_mended* mended);

/// Fills `done` with that of this place, counted from 0, in the order in which they were taken. VELHLS_OUT_OF_RANGE where there is
/// none.
VELHLS_C_API velhls_status velhls_mended_done(const velhls_mended* mended, size_t index, velhls_done* done);

/// What is found in the mended text, with the fixes that were not taken: a report that `mended` lends. Null for null.
VELHLS_C_API const velhls_report* velhls_mended_left(const velhls_mended* mended);

/// @}

/// @name Two versions of a playlist
/// @{

/// What changed from one version to the next (VELHLSComparison).
typedef struct velhls_comparison velhls_comparison;

/// Compares two versions. `elapsed_seconds` is the time between the moments when they were there, or below 0 when that is not known.
/// VELHLS_REFUSED when one is a master and the other a media playlist, and when no tag tells what one of them is. The
/// documents need not outlive the comparison.
VELHLS_C_API velhls_status velhls_compare(const velhls_document* old_version,
                                          const velhls_document* new_version, double elapsed_seconds,
                                          velhls_comparison** comparison);

/// Frees a comparison.
VELHLS_C_API void velhls_comparison_free(velhls_comparison* comparison);

/// What happened: one of the values that begin with VELHLS_CHANGE.
typedef int32_t velhls_change_kind;

enum {
    VELHLS_CHANGE_ADDED = 0,    ///< only the new version has it
    VELHLS_CHANGE_REMOVED = 1,  ///< only the old version has it
    VELHLS_CHANGE_CHANGED = 2   ///< both have it, with other values
};

/// One change (VELHLSChange). Its texts live as long as the comparison.
typedef struct velhls_change {
    size_t size;              ///< of this structure
    velhls_change_kind kind;  ///< what happened
    velhls_string path;       ///< what it happened to: "segment 268433"
    velhls_string what;       ///< which part of that: "duration"; empty for the whole of it
    velhls_string old_text;   ///< what the old version says
    velhls_string new_text;   ///< what the new version says
    size_t old_line;          ///< counted from 1; 0 where there is none
    size_t new_line;          ///< counted from 1; 0 where there is none
} velhls_change;

/// The number of changes; 0 for a null comparison.
VELHLS_C_API size_t velhls_comparison_change_count(const velhls_comparison* comparison);

/// Fills `change` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_comparison_change(const velhls_comparison* comparison, size_t index,
                                                    velhls_change* change);

/// The changes that RFC 8216 forbids, lent by the comparison; null for a null comparison.
VELHLS_C_API const velhls_findings* velhls_comparison_findings(const velhls_comparison* comparison);

/// @}

/// @name Presentations
/// A master playlist with the playlists that it names (VELHLSPresentation). Nothing is fetched.
/// @{

/// A presentation, while it is put together.
typedef struct velhls_presentation velhls_presentation;

/// Begins a presentation with its master playlist and the name that findings call it by. The document must live as long as
/// the presentation.
VELHLS_C_API velhls_status velhls_presentation_new(const char* uri, size_t length,
                                                   const velhls_document* master,
                                                   velhls_presentation** presentation);

/// Frees a presentation.
VELHLS_C_API void velhls_presentation_free(velhls_presentation* presentation);

/// What a URI of a master playlist names: one of the values that begin with VELHLS_USE.
typedef int32_t velhls_use;

enum {
    VELHLS_USE_PLAYLIST = 0,     ///< a media playlist
    VELHLS_USE_SESSION_DATA = 1  ///< the JSON of EXT-X-SESSION-DATA
};

/// A URI that the master playlist names.
typedef struct velhls_reference {
    size_t size;        ///< of this structure
    velhls_string uri;  ///< as it stands there, as long as the document lives
    velhls_use use;     ///< what it names
    size_t line;        ///< the line that it stands in first
} velhls_reference;

/// The number of URIs that the master playlist names; 0 for a null presentation.
VELHLS_C_API size_t velhls_presentation_reference_count(const velhls_presentation* presentation);

/// Fills `reference` with that of this place, counted from 0. VELHLS_OUT_OF_RANGE where there is none.
VELHLS_C_API velhls_status velhls_presentation_reference(const velhls_presentation* presentation,
                                                         size_t index, velhls_reference* reference);

/// Adds the document that a URI names, as the master playlist writes it. The document must live as long as the presentation;
/// null where there is none, with a few words that say why it was not read, or none when it is known that nothing is
/// there.
VELHLS_C_API velhls_status velhls_presentation_add(velhls_presentation* presentation, const char* uri,
                                                   size_t length, const velhls_document* document,
                                                   const char* why_not_read, size_t why_length);

/// Checks what the texts must keep together, by the profiles. VELHLS_INVALID_ARGUMENT for VELHLS_PROFILE_LIBRARY, which says
/// nothing of presentations.
VELHLS_C_API velhls_status velhls_presentation_check(const velhls_presentation* presentation,
                                                     velhls_profiles profiles, velhls_report** report);

/// @}

#ifdef __cplusplus
}
#endif

#endif
