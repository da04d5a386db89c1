// Documents: lines, attributes, URIs, the structure, and edits.
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Calls.h"

using velhls_c::give;
using velhls_c::giveOne;
using velhls_c::guarded;
using velhls_c::stringOf;
using velhls_c::truthOf;
using velhls_c::viewOf;

struct velhls_attributes {
    VELHLSLine line;
    std::vector<VELHLSAttribute> attributes;
};

struct velhls_uris {
    const velhls_document* document;
    std::vector<VELHLSUri> uris;
};

struct velhls_structure {
    const velhls_document* document;
    VELHLSStructure structure;
};

struct velhls_edits {
    const velhls_document* document;
    std::vector<VELHLSEdit> edits;
};

namespace {

velhls_line structureOf(const VELHLSLine& line) {
    velhls_line value = {};
    value.kind = line.kind;
    value.number = line.number;
    value.offset = line.offset;
    value.text = stringOf(line.text);
    value.ending = stringOf(line.ending);
    value.name = stringOf(line.name);
    value.value = stringOf(line.value);
    value.has_colon = truthOf(line.hasColon);
    value.is_known = truthOf(line.definition != nullptr);
    return value;
}

velhls_attribute structureOf(const VELHLSLine& line, const VELHLSAttribute& attribute) {
    velhls_attribute value = {};
    value.name = stringOf(attribute.name);
    value.value = stringOf(attribute.value);
    value.written_value = stringOf(attribute.writtenValue);
    value.is_quoted = truthOf(attribute.quoted);
    value.fault = attribute.fault;
    value.column = line.column(attribute.text);
    return value;
}

velhls_structure_segment structureOf(const VELHLSStructure::Segment& segment) {
    velhls_structure_segment value = {};
    value.first_line = segment.firstLine;
    value.last_line = segment.lastLine;
    value.uri_line = segment.uriLine;
    value.duration_line = segment.durationLine;
    value.byte_range_line = segment.rangeLine;
    value.date_line = segment.dateLine;
    value.key_lines = segment.inForce.keyLines.begin();
    value.key_line_count = segment.inForce.keyLines.size();
    value.map_line = segment.inForce.mapLine;
    value.date_line_in_force = segment.inForce.dateLine;
    value.duration = segment.duration;
    value.start_time = segment.startTime;
    value.media_sequence = segment.mediaSequence;
    value.discontinuity_sequence = segment.discontinuitySequence;
    value.has_byte_range_offset = truthOf(segment.rangeOffset.has_value());
    value.has_date = truthOf(segment.date.has_value());
    value.byte_range_offset = segment.rangeOffset.value_or(0);
    value.date = segment.date.value_or(0);
    return value;
}

/// Stores the place of a record that a line may belong to.
velhls_status givePlace(const std::optional<std::size_t>& place, size_t* index) {
    if (!place) return VELHLS_NOT_FOUND;
    *index = *place;
    return VELHLS_OK;
}

/// Adds the edit that is made, or tells why the line cannot be given it.
template <typename Make>
velhls_status add(velhls_edits* edits, size_t line, velhls_error** error, Make make) {
    return guarded([&]() -> velhls_status {
        try {
            edits->edits.push_back(make());
            return VELHLS_OK;
        } catch (const std::invalid_argument& refused) {
            return velhls_c::refuse(error, line, refused.what());
        }
    });
}

/// Adds edits, all of them or none.
velhls_status addAll(velhls_edits* edits, std::vector<VELHLSEdit> added) {
    edits->edits.reserve(edits->edits.size() + added.size());
    for (VELHLSEdit& edit : added)
        edits->edits.push_back(std::move(edit));
    return VELHLS_OK;
}

}  // namespace

velhls_status velhls_document_new(const char* text, size_t length, velhls_document** document) {
    if (!velhls_c::clear(document) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    // Before it is copied.
    if (length > VELHLSDocument::maximumBytes) return VELHLS_TOO_LARGE;
    return guarded([&] {
        *document = new velhls_document{VELHLSDocument(std::string(viewOf(text, length)))};
        return VELHLS_OK;
    });
}

void velhls_document_free(velhls_document* document) {
    delete document;
}

const char* velhls_document_data(const velhls_document* document) {
    return document == nullptr ? nullptr : document->document.text().data();
}

size_t velhls_document_length(const velhls_document* document) {
    return document == nullptr ? 0 : document->document.text().size();
}

velhls_kind velhls_document_kind(const velhls_document* document) {
    return document == nullptr ? velhls_kind{VELHLS_KIND_NEITHER} : velhls_kind{document->document.kind()};
}

size_t velhls_document_line_count(const velhls_document* document) {
    return document == nullptr ? 0 : document->document.lineCount();
}

velhls_status velhls_document_line(const velhls_document* document, size_t number, velhls_line* line) {
    if (document == nullptr || line == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (number == 0 || number > document->document.lineCount()) return VELHLS_OUT_OF_RANGE;
    return give(structureOf(document->document.line(number)), line);
}

size_t velhls_document_line_at(const velhls_document* document, size_t offset) {
    return document == nullptr ? 0 : document->document.lineAt(offset);
}

velhls_status velhls_attributes_new(const velhls_document* document, size_t line,
                                    velhls_attributes** attributes) {
    if (!velhls_c::clear(attributes) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] {
        auto made = std::make_unique<velhls_attributes>();
        made->line = document->document.line(line);
        for (const VELHLSAttribute& attribute : made->line.attributes())
            made->attributes.push_back(attribute);
        *attributes = made.release();
        return VELHLS_OK;
    });
}

void velhls_attributes_free(velhls_attributes* attributes) {
    delete attributes;
}

size_t velhls_attributes_count(const velhls_attributes* attributes) {
    return attributes == nullptr ? 0 : attributes->attributes.size();
}

velhls_status velhls_attributes_get(const velhls_attributes* attributes, size_t index,
                                    velhls_attribute* attribute) {
    if (attributes == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(attributes->attributes, index, attribute, [attributes](const VELHLSAttribute& found) {
        return structureOf(attributes->line, found);
    });
}

velhls_status velhls_attributes_find(const velhls_attributes* attributes, const char* name,
                                     size_t name_length, velhls_attribute* attribute) {
    if (attributes == nullptr || !velhls_c::isText(name, name_length)) return VELHLS_INVALID_ARGUMENT;
    const std::string_view wanted = viewOf(name, name_length);
    for (const VELHLSAttribute& found : attributes->attributes) {
        if (found.name == wanted) return give(structureOf(attributes->line, found), attribute);
    }
    return VELHLS_NOT_FOUND;
}

velhls_status velhls_uris_new(const velhls_document* document, velhls_uris** uris) {
    if (!velhls_c::clear(uris) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] {
        *uris = new velhls_uris{document, document->document.uris()};
        return VELHLS_OK;
    });
}

void velhls_uris_free(velhls_uris* uris) {
    delete uris;
}

size_t velhls_uris_count(const velhls_uris* uris) {
    return uris == nullptr ? 0 : uris->uris.size();
}

velhls_status velhls_uris_get(const velhls_uris* uris, size_t index, velhls_uri* uri) {
    if (uris == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(uris->uris, index, uri, [](const VELHLSUri& found) {
        velhls_uri value = {};
        value.line = found.line;
        value.text = stringOf(found.text);
        value.attribute = stringOf(found.attribute);
        return value;
    });
}

velhls_status velhls_structure_new(const velhls_document* document, velhls_structure** structure) {
    if (!velhls_c::clear(structure) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] {
        *structure = new velhls_structure{document, VELHLSStructure(document->document)};
        return VELHLS_OK;
    });
}

void velhls_structure_free(velhls_structure* structure) {
    delete structure;
}

size_t velhls_structure_segment_count(const velhls_structure* structure) {
    return structure == nullptr ? 0 : structure->structure.segmentCount();
}

velhls_status velhls_structure_get_segment(const velhls_structure* structure, size_t index,
                                           velhls_structure_segment* segment) {
    if (structure == nullptr || segment == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= structure->structure.segmentCount()) return VELHLS_OUT_OF_RANGE;
    return guarded([&] { return give(structureOf(structure->structure.segment(index)), segment); });
}

velhls_status velhls_structure_segment_of(const velhls_structure* structure, size_t line, size_t* index) {
    if (structure == nullptr || index == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] { return givePlace(structure->structure.segmentOf(line), index); });
}

size_t velhls_structure_variant_count(const velhls_structure* structure) {
    return structure == nullptr ? 0 : structure->structure.variants().size();
}

velhls_status velhls_structure_get_variant(const velhls_structure* structure, size_t index,
                                           velhls_structure_variant* variant) {
    if (structure == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(structure->structure.variants(), index, variant,
                   [](const VELHLSStructure::Variant& found) {
                       velhls_structure_variant value = {};
                       value.tag_line = found.tagLine;
                       value.uri_line = found.uriLine;
                       return value;
                   });
}

velhls_status velhls_structure_variant_of(const velhls_structure* structure, size_t line, size_t* index) {
    if (structure == nullptr || index == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] { return givePlace(structure->structure.variantOf(line), index); });
}

velhls_status velhls_edits_new(const velhls_document* document, velhls_edits** edits) {
    if (!velhls_c::clear(edits) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] {
        *edits = new velhls_edits{document, {}};
        return VELHLS_OK;
    });
}

void velhls_edits_free(velhls_edits* edits) {
    delete edits;
}

velhls_status velhls_edits_change_attributes(velhls_edits* edits, size_t line, const velhls_string* names,
                                             const velhls_string* values, size_t count,
                                             velhls_error** error) {
    velhls_c::clearError(error);
    if (edits == nullptr || (count != 0 && (names == nullptr || values == nullptr))) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return add(edits, line, error, [&] {
        std::vector<VELHLSAttributeChange> changes(count);
        for (size_t index = 0; index < count; ++index) {
            changes[index].name = viewOf(names[index].data, names[index].length);
            if (values[index].data != nullptr) {
                changes[index].value = std::string(values[index].data, values[index].length);
            }
        }
        return edits->document->document.changeAttributes(line, changes);
    });
}

velhls_status velhls_edits_replace_value(velhls_edits* edits, size_t line, const char* value, size_t length,
                                         velhls_error** error) {
    velhls_c::clearError(error);
    if (edits == nullptr || !velhls_c::isText(value, length)) return VELHLS_INVALID_ARGUMENT;
    return add(edits, line, error,
               [&] { return edits->document->document.replaceValue(line, viewOf(value, length)); });
}

velhls_status velhls_edits_replace_uri(velhls_edits* edits, const velhls_uris* uris, size_t index,
                                       const char* uri, size_t length, velhls_error** error) {
    velhls_c::clearError(error);
    if (edits == nullptr || uris == nullptr || uris->document != edits->document ||
        !velhls_c::isText(uri, length)) {
        return VELHLS_INVALID_ARGUMENT;
    }
    if (index >= uris->uris.size()) return VELHLS_OUT_OF_RANGE;
    const VELHLSUri& replaced = uris->uris[index];
    return add(edits, replaced.line, error,
               [&] { return edits->document->document.replaceUri(replaced, viewOf(uri, length)); });
}

velhls_status velhls_edits_insert_before(velhls_edits* edits, size_t line, const char* text, size_t length) {
    if (edits == nullptr || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    return add(edits, line, nullptr,
               [&] { return edits->document->document.insertBefore(line, viewOf(text, length)); });
}

velhls_status velhls_edits_insert_after(velhls_edits* edits, size_t line, const char* text, size_t length) {
    if (edits == nullptr || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    return add(edits, line, nullptr,
               [&] { return edits->document->document.insertAfter(line, viewOf(text, length)); });
}

velhls_status velhls_edits_remove_lines(velhls_edits* edits, size_t first, size_t last) {
    if (edits == nullptr) return VELHLS_INVALID_ARGUMENT;
    return add(edits, first, nullptr, [&] { return edits->document->document.removeLines(first, last); });
}

velhls_status velhls_edits_remove_segment(velhls_edits* edits, const velhls_structure* structure,
                                          size_t index) {
    if (edits == nullptr || structure == nullptr || structure->document != edits->document) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return guarded(
        [&] { return addAll(edits, structure->structure.remove(structure->structure.segment(index))); });
}

velhls_status velhls_edits_remove_variant(velhls_edits* edits, const velhls_structure* structure,
                                          size_t index) {
    if (edits == nullptr || structure == nullptr || structure->document != edits->document) {
        return VELHLS_INVALID_ARGUMENT;
    }
    return guarded([&] {
        return addAll(edits, structure->structure.remove(structure->structure.variants().at(index)));
    });
}

velhls_status velhls_edits_replace_bytes(velhls_edits* edits, size_t offset, size_t length,
                                         const char* replacement, size_t replacement_length) {
    if (edits == nullptr || !velhls_c::isText(replacement, replacement_length))
        return VELHLS_INVALID_ARGUMENT;
    const size_t textLength = edits->document->document.text().size();
    if (offset > textLength || length > textLength - offset) return VELHLS_OUT_OF_RANGE;
    return guarded([&] {
        edits->edits.push_back({offset, length, std::string(viewOf(replacement, replacement_length))});
        return VELHLS_OK;
    });
}

size_t velhls_edits_count(const velhls_edits* edits) {
    return edits == nullptr ? 0 : edits->edits.size();
}

velhls_status velhls_edits_get(const velhls_edits* edits, size_t index, velhls_edit* edit) {
    if (edits == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(edits->edits, index, edit, velhls_c::editOf);
}

velhls_status velhls_edits_apply(const velhls_edits* edits, velhls_text** text, velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(text) || edits == nullptr) return VELHLS_INVALID_ARGUMENT;
    return guarded([&]() -> velhls_status {
        VELHLSEditedText edited = edits->document->document.apply(edits->edits);
        if (edited.overlap) {
            return velhls_c::refuse(error, 0,
                                    "edits " + std::to_string(edited.overlap->first) + " and " +
                                        std::to_string(edited.overlap->second) + " overlap");
        }
        *text = new velhls_text{std::move(edited.text)};
        return VELHLS_OK;
    });
}
