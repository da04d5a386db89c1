// What a user's first program with velhls::check does: check a playlist, and read it with the models. All consumers that
// ask for check build this one.

#include <cstdlib>
#include <iostream>
#include <string>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

int main() {
    const std::string text =
        "#EXTM3U\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=0\n"
        "low.m3u8\n";
    const VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(text);
    for (const VELHLSFinding& finding : report.findings) {
        if (finding.severity != VELHLSFinding::Error) continue;
        std::cout << finding.line << ":" << finding.column << ": " << finding.ruleId << "\n";
    }
    if (!report.rejected || VELHLSParsedManifest::parseManifest(text) != nullptr) return EXIT_FAILURE;
    std::cout << report.rejected->line << ":" << report.rejected->column
              << ": rejected: " << report.rejected->ruleId << "\n";
    std::cout << ZORHLSManifestLibVersionNumber << "\n";
    return EXIT_SUCCESS;
}
