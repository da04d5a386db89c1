#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSEdit.h"
#include "velhls/document/VELHLSLine.h"
#include "velhls/document/VELHLSSequence.h"

/// The text of a playlist, understood: its lines, tags and attributes, each with its place, and edits that touch nothing
/// else.
///
///     const VELHLSDocument document(text);
///     std::vector<VELHLSEdit> edits;
///     for (const VELHLSLine line : document.lines()) {
///         if (line.name == "EXT-X-MEDIA") edits.push_back(document.changeAttributes(line.number, {{"LANGUAGE", "de"}}));
///     }
///     std::cout << document.apply(edits).text;
///
/// A document holds every line of every text, master or media playlist or neither, whatever the models
/// (VELHLSParsedManifest, VELHLSMediaStream) reject or drop; it replaces no variables and expands no patterns. It is never
/// changed. VELHLSStructure tells which lines make a variant or a segment.
///
/// Above the text it holds five bytes for each line. All views look into the text that it owns: they are good as long as
/// the document is there and is neither moved nor assigned to. It may be read by several threads at once.
class VELHLS_CHECK_API VELHLSDocument {
  public:
    /// The longest text: one byte less than 4 GiB.
    static constexpr std::uint64_t maximumBytes = UINT32_MAX;

    /// What kind of playlist a text is.
    enum Kind : std::int32_t {
        Neither = 0,  ///< no tag tells
        Master,       ///< a master playlist
        Media,        ///< a media playlist
    };

    /// Takes any bytes whatever. Throws std::length_error when there are more than maximumBytes, and nothing else but
    /// std::bad_alloc.
    explicit VELHLSDocument(std::string text);

    /// The text as it was given.
    [[nodiscard]] const std::string& text() const { return text_; }

    /// The more frequent of the tags of variants (EXT-X-STREAM-INF, EXT-X-I-FRAME-STREAM-INF) and of segments (EXTINF)
    /// decides; of as many, the one that comes first. Without any, the first tag that only one kind of playlist has.
    [[nodiscard]] Kind kind() const { return kind_; }

    /// The number of lines. What a last line feed ends is followed by no line: an empty text has none.
    [[nodiscard]] std::size_t lineCount() const { return starts_.size(); }

    /// The line with this number, counted from 1. Throws std::out_of_range for a line that is not there.
    [[nodiscard]] VELHLSLine line(std::size_t number) const;

    /// All lines. Their texts and ends, joined, are the document's text.
    [[nodiscard]] VELHLSSequence<VELHLSDocument, VELHLSLine, &VELHLSDocument::line> lines() const {
        return {*this, 1, lineCount() + 1};
    }

    /// The lines with this name, in their order.
    [[nodiscard]] std::vector<VELHLSLine> linesNamed(std::string_view name) const;

    /// The number of the line that holds the byte at this offset; the last line for the end of the text and beyond; 0 when
    /// there are no lines.
    [[nodiscard]] std::size_t lineAt(std::size_t offset) const;

    /// All URIs, in their order: URI lines, and attributes that the format says are URIs. Of a tag that is not known, the
    /// attribute URI.
    [[nodiscard]] std::vector<VELHLSUri> uris() const;

    /// @name Edits
    /// Each throws std::out_of_range for a line that is not there, and std::invalid_argument, saying why, for what the line
    /// cannot be given.
    /// @{

    /// Sets, adds and removes attributes of a line: one edit for all changes of one list. What does not change stays as it
    /// is written; new attributes come last, in their order. Of two attributes with the name of a change, both are changed;
    /// of two changes with one name the last holds. A value of the type that the format says is written with quotes or
    /// without as that wants it; of an attribute that the format does not know, or of which it lets values be of several
    /// types (X-…), as it is given. Removing what is not there changes nothing.
    ///
    /// Refused: a name that is none; a value with a quote or a line end in it, or with a comma or white space where it has
    /// no quotes, or an empty one there; a line without a name, or with something other than a colon after it;
    /// to add to a list whose last quote is not closed.
    [[nodiscard]] VELHLSEdit changeAttributes(std::size_t line,
                                              const std::vector<VELHLSAttributeChange>& changes) const;

    /// Replaces what follows the colon of a tag; adds the colon where there is none. Refused: a line end in the value; a
    /// line without a name, or with something other than a colon after it.
    [[nodiscard]] VELHLSEdit replaceValue(std::size_t line, std::string_view value) const;

    /// Replaces a URI of this document. Refused: an empty one; a line end in it, or a quote where it is an attribute; and
    /// for a URI line, "#" or white space at its beginning, and white space at its end.
    [[nodiscard]] VELHLSEdit replaceUri(const VELHLSUri& uri, std::string_view replacement) const;

    /// Inserts lines before a line, or after the last one for the number that follows its own. The text holds the lines
    /// with line feeds between them; each gets the line end of its neighbours. Insertions at one place keep the order of
    /// the list that is applied. Where the last line has no end, what is inserted after it has none either.
    [[nodiscard]] VELHLSEdit insertBefore(std::size_t line, std::string_view text) const;

    /// The same after a line; before the first one for the number 0.
    [[nodiscard]] VELHLSEdit insertAfter(std::size_t line, std::string_view text) const;

    /// Removes the lines from the first to the last of these, with their ends.
    [[nodiscard]] VELHLSEdit removeLines(std::size_t first, std::size_t last) const;

    /// Removes one line.
    [[nodiscard]] VELHLSEdit removeLine(std::size_t line) const { return removeLines(line, line); }

    /// @}

    /// The text with all edits done, which may come in any order; or which two of them overlap. What no edit covers is the
    /// same byte for byte: without any edit, the whole text. An insertion at the beginning or the end of what another edit
    /// replaces does not overlap it, and two insertions at one place do not overlap.
    ///
    /// Throws std::out_of_range for an edit that goes beyond the text.
    [[nodiscard]] VELHLSEditedText apply(const std::vector<VELHLSEdit>& edits) const;

  private:
    friend class VELHLSStructure;

    VELHLS_HIDDEN void expectLines();
    VELHLS_HIDDEN void findLines();
    [[nodiscard]] VELHLS_HIDDEN std::size_t endOf(std::size_t number) const;
    [[nodiscard]] VELHLS_HIDDEN std::string_view valueOf(std::size_t number) const;
    [[nodiscard]] VELHLS_HIDDEN std::string_view endingNear(std::size_t number) const;
    [[nodiscard]] VELHLS_HIDDEN VELHLSLine namedLine(std::size_t number) const;
    [[nodiscard]] VELHLS_HIDDEN std::size_t offsetOf(std::string_view part) const;

    std::string text_;
    /// Where each line begins.
    std::vector<std::uint32_t> starts_;
    /// What each line is: see LineCode.
    std::vector<std::uint8_t> codes_;
    Kind kind_ = Neither;
};
