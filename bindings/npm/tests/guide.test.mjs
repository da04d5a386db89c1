// The programs of the guide's page print what it shows. Run where VELHLS_SOURCE names the sources.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

const source = process.env.VELHLS_SOURCE;

test("the programs of the guide print what it shows", { skip: source === undefined && "VELHLS_SOURCE is not set" }, () => {
    const page = readFileSync(join(source, "docs/guide/javascript.md"), "utf8");
    const blocks = [...page.matchAll(/^```js\n(.*?)^```\n(?:\n|prints\n)*```text\n(.*?)^```$/gms)];
    assert.equal(blocks.length, page.match(/^```js$/gm).length);
    for (const [, program, shown] of blocks) {
        const folder = new URL(".", import.meta.url);
        const printed = execFileSync(process.execPath, ["--input-type=module", "--eval", program], {
            cwd: folder,
            encoding: "utf8",
        });
        assert.equal(printed.trimEnd(), shown.trimEnd());
    }
});
