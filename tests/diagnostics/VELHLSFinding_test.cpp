#include "velhls/document/VELHLSFinding.h"

#include <gtest/gtest.h>

namespace {

TEST(VELHLSFinding, IsANoteOfTheFirstByteWhenNew) {
    const VELHLSFinding finding;
    EXPECT_EQ(finding.severity, VELHLSFinding::Note);
    EXPECT_EQ(finding.ruleId, "");
    EXPECT_EQ(finding.line, 1U);
    EXPECT_EQ(finding.column, 1U);
    EXPECT_EQ(finding.length, 0U);
    EXPECT_EQ(finding.message, "");
    EXPECT_EQ(finding.source, "");
    EXPECT_EQ(finding.suppressed, 0U);
}

}  // namespace
