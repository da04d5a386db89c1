// What looks at texts: checks, fixes, comparisons, presentations, rules.
import { Handle } from "./handle.js";
import * as layout from "./layout.js";
import { isBytes } from "./memory.js";
import { changeKinds, fixClasses, kindNamed, kinds, profilesNamed, severities, uses } from "./names.js";

/** The functions of checks over a module's memory. */
export function makeChecks(memory, Document) {
    const { calls } = memory;

    const editsAt = (count, call, handle, ...places) =>
        Array.from({ length: count }, (_, index) => memory.edit(call, handle, ...places, index));

    function fixesOf(findings, finding, count) {
        return Array.from({ length: count }, (_, index) => {
            const fix = memory.structure(calls.velhls_findings_fix, findings, layout.velhls_fix, finding, index);
            return {
                fixClass: fixClasses[fix.fixClass],
                sentence: fix.sentence,
                edits: editsAt(fix.editCount, calls.velhls_findings_fix_edit, findings, finding, index),
            };
        });
    }

    function findingsOf(findings) {
        const { velhls_finding, velhls_related_place } = layout;
        return Array.from({ length: calls.velhls_findings_count(findings) }, (_, index) => {
            const { relatedCount, fixCount, ...finding } = memory.structure(
                calls.velhls_findings_get,
                findings,
                velhls_finding,
                index,
            );
            finding.severity = severities[finding.severity];
            finding.related = Array.from({ length: relatedCount }, (_, related) =>
                memory.structure(calls.velhls_findings_related, findings, velhls_related_place, index, related),
            );
            finding.fixes = fixesOf(findings, index, fixCount);
            return finding;
        });
    }

    function reportOf(report) {
        return {
            kind: kinds[calls.velhls_report_kind(report)],
            findings: findingsOf(calls.velhls_report_findings(report)),
            rejected: memory.findStructure(calls.velhls_report_rejection, layout.velhls_reason, report),
        };
    }

    /** Has `make` store a handle at `out`, and frees that after its use. */
    function during(make, free, use, whyRefused) {
        memory.done(make(), whyRefused);
        const made = memory.made;
        try {
            return use(made);
        } finally {
            free(made);
        }
    }

    function check(text, { profiles = "rfc8216", kind, fixes = false } = {}) {
        const options = { profiles: profilesNamed(profiles), kind: kindNamed(kind), fixes };
        return memory.withText(text, (address, length) => {
            const at = memory.options(layout.velhls_check_options, options);
            return during(() => calls.velhls_check(address, length, at, memory.out), calls.velhls_report_free, reportOf);
        });
    }

    /** Why the models reject the text at an address. */
    function whyRejected(address, length) {
        const options = { profiles: 0, kind: 0, fixes: false };
        const at = memory.options(layout.velhls_check_options, options);
        return during(
            () => calls.velhls_check(address, length, at, memory.out),
            calls.velhls_report_free,
            (report) => reportOf(report).rejected,
        );
    }

    function mendedOf(mended, asBytes) {
        const { velhls_done } = layout;
        const data = calls.velhls_mended_data(mended) >>> 0;
        const done = memory.structures(calls.velhls_mended_done_count(mended), calls.velhls_mended_done, mended, velhls_done);
        return {
            text: memory.whole(data, calls.velhls_mended_length(mended) >>> 0, asBytes),
            edits: editsAt(calls.velhls_mended_edit_count(mended), calls.velhls_mended_edit, mended),
            done: done.map((fix) => ({ ...fix, fixClass: fixClasses[fix.fixClass] })),
            rounds: calls.velhls_mended_rounds(mended),
            left: reportOf(calls.velhls_mended_left(mended)),
        };
    }

    function fix(text, { profiles = "rfc8216", kind, lossy = false, guess = false } = {}) {
        const options = { profiles: profilesNamed(profiles), kind: kindNamed(kind), lossy, guess };
        return memory.withText(text, (address, length) => {
            const at = memory.options(layout.velhls_fix_options, options);
            return during(
                () => calls.velhls_fix_text(address, length, at, memory.out),
                calls.velhls_mended_free,
                (mended) => mendedOf(mended, isBytes(text)),
            );
        });
    }

    function fixForModels(text) {
        return memory.withText(text, (address, length) =>
            during(
                () => calls.velhls_fix_for_models(address, length, memory.out),
                calls.velhls_mended_free,
                (mended) => mendedOf(mended, isBytes(text)),
            ),
        );
    }

    /** Gives documents of texts to `use`, and frees those that were made for it. */
    function withDocuments(texts, use) {
        const made = [];
        try {
            return use(
                texts.map((text) => {
                    if (text instanceof Document) return Handle.address(text);
                    const document = new Document(text);
                    made.push(document);
                    return Handle.address(document);
                }),
            );
        } finally {
            for (const document of made) document.free();
        }
    }

    function compare(oldVersion, newVersion, { elapsed = -1 } = {}) {
        const { velhls_change } = layout;
        return withDocuments([oldVersion, newVersion], ([before, after]) =>
            during(
                () => calls.velhls_compare(before, after, elapsed, memory.out),
                calls.velhls_comparison_free,
                (comparison) => ({
                    changes: memory
                        .structures(
                            calls.velhls_comparison_change_count(comparison),
                            calls.velhls_comparison_change,
                            comparison,
                            velhls_change,
                        )
                        .map((change) => ({ ...change, kind: changeKinds[change.kind] })),
                    findings: findingsOf(calls.velhls_comparison_findings(comparison)),
                }),
                "the versions are of different kinds, or no playlists",
            ),
        );
    }

    /** Gives a presentation to `use` that begins with this master playlist. */
    const withPresentation = (uri, document, use) =>
        memory.withText(uri, (address, length) =>
            during(
                () => calls.velhls_presentation_new(address, length, document, memory.out),
                calls.velhls_presentation_free,
                use,
            ),
        );

    function references(master) {
        const { velhls_reference } = layout;
        return withDocuments([master], ([document]) =>
            withPresentation("", document, (presentation) =>
                memory
                    .structures(
                        calls.velhls_presentation_reference_count(presentation),
                        calls.velhls_presentation_reference,
                        presentation,
                        velhls_reference,
                    )
                    .map((reference) => ({ ...reference, use: uses[reference.use] })),
            ),
        );
    }

    function add(presentation, { uri, why = "" }, document) {
        memory.withText(uri, (address, length) =>
            memory.withText(why, (whyAddress, whyLength) =>
                memory.done(calls.velhls_presentation_add(presentation, address, length, document, whyAddress, whyLength)),
            ),
        );
    }

    function checkPresentation(master, resources, { profiles = "rfc8216" } = {}) {
        const asked = profilesNamed(profiles);
        const read = resources.filter(({ text }) => text != null);
        return withDocuments([master.text, ...read.map(({ text }) => text)], ([document, ...documents]) =>
            withPresentation(master.uri, document, (presentation) => {
                read.forEach((resource, index) => add(presentation, resource, documents[index]));
                for (const resource of resources) if (resource.text == null) add(presentation, resource, 0);
                return during(
                    () => calls.velhls_presentation_check(presentation, asked, memory.out),
                    calls.velhls_report_free,
                    (report) => findingsOf(calls.velhls_report_findings(report)),
                );
            }),
        );
    }

    function rule(name) {
        return memory.withText(name, (address, length) => {
            const found = memory.findStructure(calls.velhls_rule_named, layout.velhls_rule, address, length);
            return found && { ...found, severity: severities[found.severity] };
        });
    }

    return { check, checkPresentation, compare, fix, fixForModels, references, rule, whyRejected };
}
