// What C says of a text is what C++ says of it, whatever it holds.
#include <memory>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "fuzz/FuzzTarget.h"
#include "velhls.h"

namespace {

template <typename Handle, void (*release)(Handle*)>
struct Release {
    void operator()(Handle* handle) const { release(handle); }
};

template <typename Handle, void (*release)(Handle*)>
using Owned = std::unique_ptr<Handle, Release<Handle, release>>;

std::string textOf(velhls_string string) {
    return std::string(string.data, string.length);
}

/// "line:column: message [rule]" of why the parse of a kind rejects the text; empty when it accepts it.
std::string rejectionOf(velhls_status status, const velhls_error* error) {
    fuzz::expect((status == VELHLS_REJECTED) == (error != nullptr), "a rejection has an error");
    if (error == nullptr) return {};
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    velhls_error_reason(error, &reason);
    return std::to_string(reason.line) + ":" + std::to_string(reason.column) + ": " + textOf(reason.message) +
           " [" + textOf(reason.rule) + "]";
}

std::string rejectionOf(const VELHLSReason& reason) {
    return std::to_string(reason.line) + ":" + std::to_string(reason.column) + ": " + reason.message + " [" +
           reason.ruleId + "]";
}

void expectSameMedia(const std::string& text) {
    velhls_media* made = nullptr;
    velhls_error* error = nullptr;
    const velhls_status status = velhls_media_parse(text.data(), text.size(), &made, &error);
    const Owned<velhls_media, velhls_media_free> media(made);
    const Owned<velhls_error, velhls_error_free> why(error);
    VELHLSReason reason;
    const auto expected = VELHLSMediaStream::parseMediaStream(text, &reason);
    fuzz::expectEqual(rejectionOf(status, error), expected == nullptr ? rejectionOf(reason) : "",
                      "media rejection");
    if (expected == nullptr) return;
    const std::size_t count = velhls_media_segment_count(made);
    fuzz::expect(count == expected->segments.size(), "the number of segments");
    std::vector<velhls_string> uris(count);
    std::vector<double> durations(count);
    fuzz::expect(velhls_media_uris(made, 0, count, uris.data()) == VELHLS_OK, "the column of URIs");
    fuzz::expect(velhls_media_durations(made, 0, count, durations.data()) == VELHLS_OK,
                 "the column of durations");
    for (std::size_t index = 0; index < count; ++index) {
        velhls_segment segment = VELHLS_INIT(velhls_segment);
        fuzz::expect(velhls_media_segment(made, index, &segment) == VELHLS_OK, "a segment");
        fuzz::expect(segment.uri.data == uris[index].data && segment.duration == durations[index],
                     "one segment");
        fuzz::expectEqual(textOf(segment.uri), expected->segments[index]->uri, "the URI of a segment");
    }
    velhls_text* rendered = nullptr;
    fuzz::expect(velhls_media_render(made, &rendered) == VELHLS_OK, "what parses renders");
    velhls_text_free(rendered);
    velhls_text* written = nullptr;
    fuzz::expect((velhls_media_write(made, nullptr, &written, nullptr) == VELHLS_OK) == (written != nullptr),
                 "what is refused is not written");
    velhls_text_free(written);
}

void expectSameMaster(const std::string& text) {
    velhls_master* made = nullptr;
    velhls_error* error = nullptr;
    const velhls_status status = velhls_master_parse(text.data(), text.size(), &made, &error);
    const Owned<velhls_master, velhls_master_free> master(made);
    const Owned<velhls_error, velhls_error_free> why(error);
    VELHLSReason reason;
    const auto expected = VELHLSParsedManifest::parseManifest(text, &reason);
    fuzz::expectEqual(rejectionOf(status, error), expected == nullptr ? rejectionOf(reason) : "",
                      "master rejection");
    if (expected == nullptr) return;
    const std::size_t count = velhls_master_variant_count(made);
    fuzz::expect(count == expected->variants.size(), "the number of variants");
    std::vector<std::uint64_t> bandwidths(count);
    fuzz::expect(velhls_master_bandwidths(made, 0, count, bandwidths.data()) == VELHLS_OK, "the bandwidths");
    for (std::size_t index = 0; index < count; ++index) {
        velhls_variant variant = VELHLS_INIT(velhls_variant);
        fuzz::expect(velhls_master_variant(made, index, &variant) == VELHLS_OK, "a variant");
        fuzz::expect(variant.bandwidth == bandwidths[index], "one variant");
    }
    velhls_text* rendered = nullptr;
    velhls_master_render(made, &rendered);
    velhls_text_free(rendered);
}

/// Every line is removed by itself, given another value and another attribute: what is not refused applies.
void editEachLine(const velhls_document* document) {
    const std::size_t count = velhls_document_line_count(document);
    constexpr std::size_t mostLines = 32;
    for (std::size_t line = 1; line <= count && line <= mostLines; ++line) {
        velhls_edits* made = nullptr;
        fuzz::expect(velhls_edits_new(document, &made) == VELHLS_OK, "edits");
        const Owned<velhls_edits, velhls_edits_free> edits(made);
        const velhls_string name = {"LANGUAGE", 8};
        const velhls_string value = {"de", 2};
        velhls_status status = VELHLS_OK;
        if (line % 3 == 0) status = velhls_edits_remove_lines(made, line, line);
        if (line % 3 == 1) status = velhls_edits_replace_value(made, line, "1", 1, nullptr);
        if (line % 3 == 2) status = velhls_edits_change_attributes(made, line, &name, &value, 1, nullptr);
        fuzz::expect(status == VELHLS_OK || status == VELHLS_REFUSED, "an edit is made or refused");
        velhls_text* text = nullptr;
        fuzz::expect(velhls_edits_apply(made, &text, nullptr) == VELHLS_OK, "one edit applies");
        velhls_text_free(text);
    }
}

void expectSameDocument(const std::string& text) {
    velhls_document* made = nullptr;
    fuzz::expect(velhls_document_new(text.data(), text.size(), &made) == VELHLS_OK, "any text is a document");
    const Owned<velhls_document, velhls_document_free> document(made);
    std::string joined;
    velhls_line line = VELHLS_INIT(velhls_line);
    for (std::size_t number = 1; velhls_document_line(made, number, &line) == VELHLS_OK; ++number)
        joined += textOf(line.text) + textOf(line.ending);
    fuzz::expectEqual(joined, text, "the lines are the text");
    velhls_structure* structure = nullptr;
    fuzz::expect(velhls_structure_new(made, &structure) == VELHLS_OK, "any document has a structure");
    velhls_structure_segment segment = VELHLS_INIT(velhls_structure_segment);
    for (std::size_t index = 0; velhls_structure_get_segment(structure, index, &segment) == VELHLS_OK;
         ++index)
        fuzz::expect(segment.last_line <= velhls_document_line_count(made), "segments lie in the lines");
    velhls_structure_free(structure);
    editEachLine(made);
    velhls_comparison* comparison = nullptr;
    const velhls_status compared = velhls_compare(made, made, -1, &comparison);
    fuzz::expect(compared == VELHLS_OK || compared == VELHLS_REFUSED, "a comparison is made or refused");
    fuzz::expect(velhls_comparison_change_count(comparison) == 0, "a text has not changed against itself");
    velhls_comparison_free(comparison);
}

constexpr velhls_profiles allProfiles = 15;

void expectSameEdits(const velhls_findings* findings, std::size_t index, std::size_t which,
                     const VELHLSFix& expected) {
    velhls_fix fix = VELHLS_INIT(velhls_fix);
    fuzz::expect(velhls_findings_fix(findings, index, which, &fix) == VELHLS_OK, "a fix");
    fuzz::expectEqual(textOf(fix.sentence), expected.sentence, "the sentence of a fix");
    fuzz::expect(fix.fix_class == expected.fixClass, "the class of a fix");
    fuzz::expect(fix.edit_count == expected.edits.size(), "the number of edits of a fix");
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    for (std::size_t at = 0; at < fix.edit_count; ++at) {
        fuzz::expect(velhls_findings_fix_edit(findings, index, which, at, &edit) == VELHLS_OK, "an edit");
        fuzz::expect(edit.offset == expected.edits[at].offset && edit.length == expected.edits[at].length,
                     "the place of an edit");
        fuzz::expectEqual(textOf(edit.replacement), expected.edits[at].replacement, "the text of an edit");
    }
}

void expectSameFindings(const velhls_findings* findings, const std::vector<VELHLSFinding>& expected) {
    fuzz::expect(velhls_findings_count(findings) == expected.size(), "the number of findings");
    for (std::size_t index = 0; index < expected.size(); ++index) {
        velhls_finding finding = VELHLS_INIT(velhls_finding);
        fuzz::expect(velhls_findings_get(findings, index, &finding) == VELHLS_OK, "a finding");
        fuzz::expectEqual(textOf(finding.message), expected[index].message, "the message of a finding");
        fuzz::expect(finding.fix_count == expected[index].fixes.size(), "the number of fixes");
        for (std::size_t which = 0; which < finding.fix_count; ++which)
            expectSameEdits(findings, index, which, expected[index].fixes[which]);
    }
}

void expectSameReport(const std::string& text) {
    velhls_check_options asked = VELHLS_INIT(velhls_check_options);
    asked.profiles = allProfiles;
    asked.fixes = 1;
    velhls_report* made = nullptr;
    fuzz::expect(velhls_check(text.data(), text.size(), &asked, &made) == VELHLS_OK, "a report");
    const Owned<velhls_report, velhls_report_free> report(made);
    VELHLSDiagnostics::Options options;
    options.profiles = VELHLSDiagnostics::profiles();
    options.fixes = true;
    expectSameFindings(velhls_report_findings(made), VELHLSDiagnostics::check(text, options).findings);
}

/// The mended text is the one that was given with the edits done.
void expectEditsOfMending(const std::string& text) {
    velhls_mended* made = nullptr;
    fuzz::expect(velhls_fix_for_models(text.data(), text.size(), &made) == VELHLS_OK, "any text is mended");
    const Owned<velhls_mended, velhls_mended_free> mended(made);
    velhls_document* whole = nullptr;
    fuzz::expect(velhls_document_new(text.data(), text.size(), &whole) == VELHLS_OK, "a document");
    const Owned<velhls_document, velhls_document_free> document(whole);
    velhls_edits* list = nullptr;
    fuzz::expect(velhls_edits_new(whole, &list) == VELHLS_OK, "edits");
    const Owned<velhls_edits, velhls_edits_free> edits(list);
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    for (std::size_t index = 0; velhls_mended_edit(made, index, &edit) == VELHLS_OK; ++index) {
        fuzz::expect(velhls_edits_replace_bytes(list, edit.offset, edit.length, edit.replacement.data,
                                                edit.replacement.length) == VELHLS_OK,
                     "an edit lies in the text");
    }
    velhls_text* edited = nullptr;
    fuzz::expect(velhls_edits_apply(list, &edited, nullptr) == VELHLS_OK, "the edits of mending apply");
    const Owned<velhls_text, velhls_text_free> owned(edited);
    fuzz::expectEqual(std::string(velhls_text_data(edited), velhls_text_length(edited)),
                      std::string(velhls_mended_data(made), velhls_mended_length(made)), "the mended text");
    velhls_done done = VELHLS_INIT(velhls_done);
    for (std::size_t index = 0; velhls_mended_done(made, index, &done) == VELHLS_OK; ++index)
        fuzz::expect(done.fix_class == VELHLS_FIX_SAFE, "fixes for the models are safe");
}

}  // namespace

VELHLS_FUZZ_TARGET(c) {
    // What patterns expand to is bounded, but large: the target "media" looks at it.
    if (text.find("#ZOR-PATTERN_START:") != std::string::npos) return;
    expectSameMedia(text);
    expectSameMaster(text);
    expectSameDocument(text);
    expectSameReport(text);
    expectEditsOfMending(text);
}
