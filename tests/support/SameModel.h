#pragma once

#include <gtest/gtest.h>

#include "tests/support/MediaDescription.h"

namespace playlist {

/// The two records hold the same, field by field, and the same media playlist is attached to both.
template <typename Record>
void expectSameModel(const Record& seen, const Record& expected) {
    EXPECT_EQ(describe(seen), describe(expected));
    EXPECT_EQ(seen.mediaStream, expected.mediaStream);
}

}  // namespace playlist
