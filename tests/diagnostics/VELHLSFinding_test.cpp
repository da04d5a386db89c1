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

TEST(VELHLSFinding, NamesItsSeverities) {
    EXPECT_EQ(VELHLSFinding::textOf(VELHLSFinding::Note), "note");
    EXPECT_EQ(VELHLSFinding::textOf(VELHLSFinding::Warning), "warning");
    EXPECT_EQ(VELHLSFinding::textOf(VELHLSFinding::Error), "error");
    EXPECT_EQ(VELHLSFinding::textOf(static_cast<VELHLSFinding::Severity>(3)), "");
}

}  // namespace
