// Internal to libvelhls-c, not installed: what its functions do in the same way, so that nothing but a status leaves them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "velhls.h"

struct velhls_text {
    std::string text;
};

struct velhls_error {
    VELHLSReason reason;
};

struct velhls_document {
    VELHLSDocument document;
};

namespace velhls_c {

/// Does the work, which returns a status, and makes a status of every exception.
template <typename Work>
velhls_status guarded(Work work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return VELHLS_OUT_OF_MEMORY;
    } catch (const std::length_error&) {
        return VELHLS_TOO_LARGE;
    } catch (const std::out_of_range&) {
        return VELHLS_OUT_OF_RANGE;
    } catch (...) {
        return VELHLS_INTERNAL_ERROR;
    }
}

/// Stores null, so that nothing stale is there when a call fails; false for a null pointer.
template <typename Handle>
bool clear(Handle** handle) {
    if (handle == nullptr) return false;
    *handle = nullptr;
    return true;
}

/// The same of a handle that nobody need ask for.
inline void clearError(velhls_error** error) {
    if (error != nullptr) *error = nullptr;
}

/// Stores why a call failed, if someone asks.
inline void tell(velhls_error** error, VELHLSReason reason) {
    if (error == nullptr) return;
    auto made = std::make_unique<velhls_error>();
    made->reason = std::move(reason);
    *error = made.release();
}

/// The reason for what was refused in a line, or nowhere for 0.
inline velhls_status refuse(velhls_error** error, std::size_t line, std::string message) {
    tell(error, {"", line, line == 0 ? std::size_t{0} : 1, 0, std::move(message)});
    return VELHLS_REFUSED;
}

/// Whether these bytes can be: a null pointer is a text of none.
inline bool isText(const char* data, std::size_t length) {
    return data != nullptr || length == 0;
}

inline std::string_view viewOf(const char* data, std::size_t length) {
    return data == nullptr ? std::string_view("", 0) : std::string_view(data, length);
}

inline velhls_string stringOf(std::string_view text) {
    return {text.data() == nullptr ? "" : text.data(), text.size()};
}

inline int32_t truthOf(bool value) {
    return value ? 1 : 0;
}

/// No structure will ever be longer: a size beyond it was not set.
constexpr std::size_t largestStructure = 4096;

/// Writes a structure into the caller's, which says its size. What that has and this library does not know is 0.
template <typename Structure>
velhls_status give(Structure value, Structure* out) {
    if (out == nullptr || out->size < sizeof(Structure) || out->size > largestStructure) {
        return VELHLS_INVALID_ARGUMENT;
    }
    value.size = out->size;
    *out = value;
    // The caller's structure goes on after what is known here.
    char* const known = reinterpret_cast<char*>(out);
    std::memset(known + sizeof(Structure), 0, value.size - sizeof(Structure));
    return VELHLS_OK;
}

/// Writes what `structureOf` makes of one record, into the caller's structure.
template <typename Records, typename Structure, typename StructureOf>
velhls_status giveOne(const Records& records, std::size_t index, Structure* out, StructureOf structureOf) {
    if (out == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= records.size()) return VELHLS_OUT_OF_RANGE;
    return give(structureOf(records[index]), out);
}

/// Writes one value of each of `count` records from `first` on.
template <typename Records, typename Value, typename ValueOf>
velhls_status fill(const Records& records, std::size_t first, std::size_t count, Value* values,
                   ValueOf valueOf) {
    if (values == nullptr && count != 0) return VELHLS_INVALID_ARGUMENT;
    if (first > records.size() || count > records.size() - first) return VELHLS_OUT_OF_RANGE;
    for (std::size_t index = 0; index < count; ++index)
        values[index] = valueOf(*records[first + index]);
    return VELHLS_OK;
}

/// A reason as the structure of it, whose texts look into it.
velhls_reason reasonOf(const VELHLSReason& reason);

/// The same of an edit.
inline velhls_edit editOf(const VELHLSEdit& edit) {
    velhls_edit value = {};
    value.offset = edit.offset;
    value.length = edit.length;
    value.replacement = stringOf(edit.replacement);
    return value;
}

/// Stores the lines of one of the records, which point to them, if these are known: where a playlist was not parsed of a document
/// there are none.
template <typename Records>
velhls_status giveLines(const std::optional<VELHLSRecordLines>& lines, const Records& records,
                        std::size_t index, std::size_t* first, std::size_t* last) {
    if (index >= records.size()) return VELHLS_OUT_OF_RANGE;
    if (!lines) return VELHLS_NOT_FOUND;
    if (first == nullptr || last == nullptr) return VELHLS_INVALID_ARGUMENT;
    const auto found = lines->of(*records[index]);
    if (!found) return VELHLS_NOT_FOUND;
    *first = found->first;
    *last = found->last;
    return VELHLS_OK;
}

}  // namespace velhls_c
