// All examples: what this package finds, mends and writes of them is what the native command does. Run where VELHLS_COMMAND names
// that and VELHLS_SOURCE the sources.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { cpSync, mkdtempSync, readdirSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, relative } from "node:path";
import { test } from "node:test";
import { check, Document, fix, parse, render } from "velhls";

const command = process.env.VELHLS_COMMAND;
const source = process.env.VELHLS_SOURCE;
const examples = join(source ?? "", "examples");
const skip = command === undefined || source === undefined ? "VELHLS_COMMAND and VELHLS_SOURCE are not set" : false;

const filesBelow = (folder) =>
    readdirSync(folder, { recursive: true })
        .filter((name) => name.endsWith(".m3u8"))
        .sort()
        .map((name) => join(folder, name));
// Which names collide is a matter of the hash map, which is another one here.
const isOfOneStandardLibrary = (path) => path.endsWith("define-names-collide.m3u8");
const run = (...options) => spawnSync(command, options, { maxBuffer: 1 << 30 });

const profiles = ["rfc8216", "rfc8216bis", "apple", "library"];

test("the findings and fixes of every example are those of the command", { skip }, () => {
    const { stdout } = run(
        ...["check", "--format", "json", "--fixes", "--severity", "note"],
        ...profiles.flatMap((profile) => ["--profile", profile]),
        examples,
    );
    const { files } = JSON.parse(stdout);
    assert.deepEqual(files.map(({ path }) => path).sort(), filesBelow(examples));
    for (const { path, kind, rejected, findings } of files) {
        if (isOfOneStandardLibrary(path)) continue;
        const report = check(readFileSync(path), { profiles, fixes: true });
        assert.equal(report.kind, kind, path);
        assert.deepEqual(report.rejected, rejected, path);
        const seen = report.findings.map(({ uri, fixes, related, ...finding }) => ({
            ...finding,
            related: related.map(({ uri, ...place }) => place),
            ...(fixes.length === 0 ? {} : { fixes: fixes.map(({ fixClass, ...rest }) => ({ class: fixClass, ...rest })) }),
        }));
        assert.deepEqual(seen, findings, path);
    }
});

test("every example is mended as the command mends it", { skip }, () => {
    const copy = mkdtempSync(join(tmpdir(), "velhls-examples-"));
    try {
        cpSync(examples, copy, { recursive: true });
        run("fix", "--apply", "--quiet", "--lossy", "--guess", "--profile", "rfc8216", "--profile", "library", copy);
        for (const path of filesBelow(examples)) {
            const text = readFileSync(path);
            const mended = fix(text, { profiles: ["rfc8216", "library"], lossy: true, guess: true });
            assert.deepEqual(Buffer.from(mended.text), readFileSync(join(copy, relative(examples, path))), path);
            assert.deepEqual(new Document(text).apply(mended.edits), mended.text, path);
        }
    } finally {
        rmSync(copy, { recursive: true });
    }
});

test("every playlist is rendered as the command renders it", { skip }, () => {
    for (const path of filesBelow(join(examples, "playlists"))) {
        assert.deepEqual(Buffer.from(render(readFileSync(path))), execFileSync(command, ["render", "--quiet", path]), path);
    }
});

test("every example that is accepted has as many records as its columns have values", { skip }, () => {
    for (const path of filesBelow(examples)) {
        const text = readFileSync(path);
        if (check(text, { profiles: [] }).rejected !== null) continue;
        const playlist = parse(text);
        if (playlist.kind === "media") {
            assert.deepEqual(
                playlist.segments.map(({ uri }) => uri),
                playlist.uris,
                path,
            );
            assert.deepEqual(
                playlist.segments.map(({ duration }) => duration),
                [...playlist.durations],
                path,
            );
        } else {
            const uris = [...playlist.variants, ...playlist.iFrameVariants].map(({ uri }) => uri);
            assert.deepEqual(uris, playlist.variantUris, path);
        }
        playlist.free();
    }
});
