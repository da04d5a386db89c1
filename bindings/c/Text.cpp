// Statuses, texts and errors, kinds, keys and initialization sections: what both models share.
#include <memory>

#include "Calls.h"

using velhls_c::give;
using velhls_c::stringOf;

velhls_reason velhls_c::reasonOf(const VELHLSReason& reason) {
    velhls_reason info = {};
    info.rule = stringOf(reason.ruleId);
    info.line = reason.line;
    info.column = reason.column;
    info.length = reason.length;
    info.message = stringOf(reason.message);
    return info;
}

const char* velhls_status_text(velhls_status status) {
    switch (status) {
        case VELHLS_OK:
            return "it was done";
        case VELHLS_REJECTED:
            return "the playlist was rejected";
        case VELHLS_REFUSED:
            return "this cannot be done to this text or model";
        case VELHLS_OUT_OF_RANGE:
            return "there is no such record, line or place";
        case VELHLS_NOT_FOUND:
            return "it is not there";
        case VELHLS_INVALID_ARGUMENT:
            return "a null pointer, a structure without its size, or no such value";
        case VELHLS_OUT_OF_MEMORY:
            return "memory ran out";
        case VELHLS_TOO_LARGE:
            return "the text is too large";
        case VELHLS_INTERNAL_ERROR:
            return "a fault of the library";
        default:
            return "no such status";
    }
}

const char* velhls_version(void) {
    return ZORHLSManifestLibVersionString;
}

const char* velhls_text_data(const velhls_text* text) {
    return text == nullptr ? nullptr : text->text.data();
}

size_t velhls_text_length(const velhls_text* text) {
    return text == nullptr ? 0 : text->text.size();
}

void velhls_text_free(velhls_text* text) {
    delete text;
}

velhls_status velhls_error_reason(const velhls_error* error, velhls_reason* reason) {
    if (error == nullptr) return VELHLS_INVALID_ARGUMENT;
    return give(velhls_c::reasonOf(error->reason), reason);
}

void velhls_error_free(velhls_error* error) {
    delete error;
}

velhls_status velhls_detect_kind(const char* text, size_t length, velhls_kind* kind) {
    if (kind == nullptr || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    *kind = VELHLS_KIND_NEITHER;
    return velhls_c::guarded([&] {
        const auto detection = VELHLSDiagnostics::detectKind(velhls_c::viewOf(text, length));
        if (detection) *kind = detection->kind;
        return VELHLS_OK;
    });
}

velhls_status velhls_key_get(const velhls_key* key, velhls_key_info* info) {
    if (key == nullptr) return VELHLS_INVALID_ARGUMENT;
    const auto& data = *reinterpret_cast<const VELHLSProtectionData*>(key);
    velhls_key_info value = {};
    value.method = data.method;
    value.uri = stringOf(data.uri);
    value.iv = stringOf(data.iv);
    value.format = stringOf(data.keyFormat);
    value.versions = data.keyFormatVersions.data();
    value.version_count = data.keyFormatVersions.size();
    return give(value, info);
}

velhls_status velhls_map_get(const velhls_map* map, velhls_map_info* info) {
    if (map == nullptr) return VELHLS_INVALID_ARGUMENT;
    const auto& data = *reinterpret_cast<const VELHLSMISMap*>(map);
    velhls_map_info value = {};
    value.uri = stringOf(data.uri);
    value.byte_range_offset = -1;
    if (data.byteRange != nullptr) {
        value.has_byte_range = 1;
        value.byte_range_length = data.byteRange->length;
        value.byte_range_offset = data.byteRange->offset;
    }
    return give(value, info);
}
