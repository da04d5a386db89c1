#pragma once

#include <cstdint>

/// The outcome that a parse stores in VELHLSParsingStatus::error.
///
/// These are the only two values that the library ever stores. Success is -1: the value 0 is not in use. Most
/// failures store neither: they are reported by the null result of the parse alone.
enum VELHLSParsingError : std::int32_t {
    /// The parse succeeded. Stored at the very end of every successful parse, whatever was there before.
    VELHLSParsingErrorNone = -1,
    /// A line of a media pattern (vendor extension) was malformed, or a pattern tag stood where none may
    /// stand. The status' message is then a copy of the offending playlist line.
    VELHLSParsingErrorMediaPattern = 1,
};
