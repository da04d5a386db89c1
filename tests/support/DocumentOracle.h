#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/PlainDocument.h"

/// What must hold of the document of any text whatever.
namespace oracle {

/// Looks for the first thing that does not hold.
class DocumentPromises {
  public:
    explicit DocumentPromises(const std::string& text)
        : text_(text), document_(text), structure_(document_) {}

    /// Names what does not hold; empty when everything does.
    std::string broken() {
        lookAtLines();
        lookAtAttributes();
        lookAtStructure();
        lookAtEdits();
        return broken_;
    }

  private:
    /// Of a long text not every line is edited.
    static constexpr std::size_t mostEdited = 24;

    void expect(bool holds, const char* promise, std::size_t line = 0) {
        if (!holds && broken_.empty()) broken_ = std::string(promise) + ", line " + std::to_string(line);
    }

    bool isInText(std::string_view part) const {
        const std::string& text = document_.text();
        return part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size();
    }

    void lookAtLines() {
        const std::vector<plain::Line> expected = plain::linesOf(text_);
        expect(document_.text() == text_, "the text is the one that was given");
        expect(document_.lineCount() == expected.size(), "there are as many lines as by the plain form");
        expect(document_.lines().size() == expected.size(), "all lines are walked over");
        std::string joined;
        for (const VELHLSLine line : document_.lines()) {
            expect(line.offset == joined.size(), "a line begins where the one before it ends", line.number);
            joined.append(line.text).append(line.ending);
            const plain::Line& plainLine = expected.at(line.number - 1);
            const bool isSame = line.text == plainLine.text && line.ending == plainLine.ending &&
                                line.kind == plainLine.kind && line.name == plainLine.name;
            expect(isSame, "a line is that of the plain form", line.number);
            expect(line.definition == VELHLSTagDefinition::find(line.name), "a name has its definition",
                   line.number);
            expect(isInText(line.name) || line.name.empty(), "the name is in the text", line.number);
            expect(isInText(line.value) || line.value.empty(), "the value is in the text", line.number);
            expect(document_.lineAt(line.offset) == line.number, "the line is found by its place",
                   line.number);
        }
        expect(joined == text_, "the lines joined are the text");
        expect(document_.apply({}).text == text_, "no edit changes nothing");
    }

    void lookAtAttributes() {
        for (const VELHLSLine line : document_.lines()) {
            if (line.name.empty()) continue;
            std::string joined;
            bool isStrict = !line.value.empty();
            bool isFirst = true;
            for (const VELHLSAttribute& attribute : line.attributes()) {
                if (!isFirst) joined += ',';
                isFirst = false;
                joined += attribute.text;
                isStrict = isStrict && attribute.fault == VELHLSAttribute::None;
                expect(attribute.text.find(attribute.writtenValue) != std::string_view::npos,
                       "a value is in its attribute", line.number);
                expect(attribute.quoted == (attribute.writtenValue.substr(0, 1) == "\""),
                       "a quoted value has its quote", line.number);
                const bool hasPlace =
                    attribute.fault == VELHLSAttribute::None || isInText(attribute.faultText);
                expect(hasPlace, "a fault has its place", line.number);
            }
            expect(joined == line.value, "the attributes joined are the list", line.number);
            expect(isStrict == plain::isAttributeList(std::string(line.value)),
                   "a list has a fault if and only if it breaks the grammar", line.number);
        }
    }

    void lookAtStructure() {
        std::vector<bool> isTaken(document_.lineCount() + 1);
        const auto take = [&](std::size_t line) {
            expect(!isTaken.at(line), "a line belongs to one record", line);
            isTaken.at(line) = true;
        };
        for (std::size_t place = 0; place < structure_.variants().size(); ++place) {
            for (const std::size_t line : VELHLSStructure::linesOf(structure_.variants()[place])) {
                take(line);
                expect(structure_.variantOf(line) == place, "a variant's line leads to it", line);
            }
        }
        double startTime = 0.0;
        for (const VELHLSStructure::Segment segment : structure_.segments()) {
            for (const std::size_t line : structure_.linesOf(segment)) {
                take(line);
                expect(structure_.segmentOf(line) == segment.index, "a segment's line leads to it", line);
            }
            expect(segment.startTime == startTime, "a segment starts where the one before it ends",
                   segment.lastLine);
            startTime += segment.duration;
            const VELHLSStructure::InForce there = structure_.inForceAt(segment.lastLine);
            expect(there.mapLine == segment.inForce.mapLine && there.dateLine == segment.inForce.dateLine &&
                       there.keyLines.size() == segment.inForce.keyLines.size(),
                   "what is in force at a segment's end is in force for it", segment.lastLine);
        }
        for (const VELHLSLine line : document_.lines()) {
            if (line.kind == VELHLSLine::Uri)
                expect(isTaken[line.number], "a URI belongs to a record", line.number);
        }
    }

    void lookAtEdits() {
        const std::size_t step = document_.lineCount() / mostEdited + 1;
        for (std::size_t number = 1; number <= document_.lineCount(); number += step)
            editLine(document_.line(number));
        editUris(step);
        editRecords();
    }

    void editLine(const VELHLSLine& line) {
        const std::string before = text_.substr(0, line.offset);
        const std::string whole = std::string(line.text).append(line.ending);
        const std::string after = text_.substr(line.offset + whole.size());
        expect(changed({document_.removeLine(line.number)}) == before + after, "a removed line alone goes",
               line.number);

        const std::string inserted = changed({document_.insertBefore(line.number, "#inserted")});
        const std::string rest = whole + after;
        const bool isBefore =
            inserted == before + "#inserted\n" + rest || inserted == before + "#inserted\r\n" + rest;
        expect(isBefore, "an inserted line comes before its line", line.number);

        const VELHLSDocument longer(changed({document_.insertAfter(line.number, "#inserted")}));
        // A carriage return that ends the text becomes part of the line end that it gets.
        const bool isAfter = longer.lineCount() == document_.lineCount() + 1 &&
                             longer.text().compare(0, text_.size() - after.size(), text_, 0,
                                                   text_.size() - after.size()) == 0 &&
                             longer.line(line.number + 1).text == "#inserted";
        expect(isAfter, "an inserted line comes after its line", line.number);
        if (!line.name.empty()) editAttributes(line);
    }

    void editAttributes(const VELHLSLine& line) {
        std::vector<std::string> names = {"X-INSERTED"};
        for (const VELHLSAttribute& attribute : line.attributes()) {
            if (names.size() < 4 && !attribute.name.empty()) names.emplace_back(attribute.name);
        }
        for (const std::string& name : names) {
            expectAttribute(line, name, "1");
            expectAttribute(line, name, std::nullopt);
        }
    }

    void expectAttribute(const VELHLSLine& line, const std::string& name,
                         const std::optional<std::string>& value) {
        std::vector<VELHLSEdit> edits;
        try {
            edits.push_back(document_.changeAttributes(line.number, {{name, value}}));
        } catch (const std::invalid_argument&) {
            return;
        }
        const VELHLSDocument edited(changed(edits));
        expectSameOtherLines(edited, line.number);
        if (!broken_.empty()) return;
        const auto found = edited.line(line.number).attributes().find(name);
        if (value) {
            expect(found && found->value == *value, "an attribute that was set is read back", line.number);
        } else {
            expect(!found, "an attribute that was removed is gone", line.number);
        }
    }

    void expectSameOtherLines(const VELHLSDocument& edited, std::size_t number) {
        expect(edited.lineCount() == document_.lineCount(), "an edit of a line adds and removes none",
               number);
        if (edited.lineCount() != document_.lineCount()) return;
        const VELHLSLine line = edited.line(number);
        const VELHLSLine before = document_.line(number);
        const std::size_t end = before.offset + before.text.size();
        expect(
            line.offset == before.offset && edited.text().compare(0, line.offset, text_, 0, line.offset) == 0,
            "what is before an edited line stays", number);
        // Counted from the end of the text: a line whose last character is now a carriage return has a longer end.
        const std::string after = text_.substr(end);
        const std::string& all = edited.text();
        const bool isSame =
            all.size() >= after.size() && all.compare(all.size() - after.size(), after.size(), after) == 0;
        expect(isSame, "what is after an edited line stays", number);
    }

    void editUris(std::size_t step) {
        const std::vector<VELHLSUri> uris = document_.uris();
        for (std::size_t place = 0; place < uris.size(); place += step) {
            const VELHLSDocument edited(
                changed({document_.replaceUri(uris[place], "https://example.com/replaced")}));
            expectSameOtherLines(edited, uris[place].line);
            const std::vector<VELHLSUri> after = edited.uris();
            const bool isThere = after.size() == uris.size() &&
                                 after[place].text == "https://example.com/replaced" &&
                                 after[place].attribute == uris[place].attribute;
            expect(isThere, "a URI that was replaced is read back", uris[place].line);
        }
    }

    void editRecords() {
        std::vector<VELHLSEdit> edits;
        std::size_t lines = 0;
        for (const VELHLSStructure::Variant& variant : structure_.variants()) {
            const std::vector<VELHLSEdit> removed = structure_.remove(variant);
            edits.insert(edits.end(), removed.begin(), removed.end());
            lines += VELHLSStructure::linesOf(variant).size();
        }
        const VELHLSDocument withoutVariants(changed(edits));
        expect(VELHLSStructure(withoutVariants).variants().empty(),
               "the variants that were removed are gone");
        expect(withoutVariants.lineCount() + lines == document_.lineCount(),
               "nothing else goes with the variants");
        for (const VELHLSStructure::Segment segment : structure_.segments()) {
            const std::vector<VELHLSEdit> removed = structure_.remove(segment);
            edits.insert(edits.end(), removed.begin(), removed.end());
        }
        const VELHLSDocument bare(changed(edits));
        for (const VELHLSLine line : bare.lines())
            expect(line.kind != VELHLSLine::Uri, "the URIs of all records go with them", line.number);
    }

    std::string changed(const std::vector<VELHLSEdit>& edits) {
        VELHLSEditedText edited = document_.apply(edits);
        expect(!edited.overlap, "edits of different lines do not overlap");
        return std::move(edited.text);
    }

    std::string text_;
    VELHLSDocument document_;
    VELHLSStructure structure_;
    std::string broken_;
};

}  // namespace oracle
