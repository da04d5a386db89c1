// The package in Chromium, as a server gives it: no bundler, and servers that know what .wasm is and that do not. Run by
// docs/playground/make, beside playwright-core; VELHLS_PACKAGE names the folder of the package.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join } from "node:path";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";

const types = { ".js": "text/javascript", ".html": "text/html" };
let browser;
before(async () => {
    browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
});
after(() => browser.close());

async function withServer(wasmType, use) {
    const known = { ...types, ".wasm": wasmType };
    const server = createServer(({ url }, response) => {
        if (url === "/") return response.writeHead(200, { "Content-Type": "text/html" }).end("<!doctype html>");
        if (!url.startsWith("/lib/")) return response.writeHead(404).end();
        response.writeHead(200, { "Content-Type": known[extname(url)] }).end(readFileSync(join(process.env.VELHLS_PACKAGE, url)));
    });
    await new Promise((listening) => server.listen(0, "127.0.0.1", listening));
    try {
        const page = await browser.newPage();
        await page.goto(`http://127.0.0.1:${server.address().port}/`);
        await use(page);
    } finally {
        server.close();
        server.closeAllConnections();
    }
}

for (const wasmType of ["application/wasm", "application/octet-stream"]) {
    test(`a browser imports both modules, served as ${wasmType}`, () =>
        withServer(wasmType, async (page) => {
            const seen = await page.evaluate(async () => {
                const velhls = await import("/lib/index.js");
                const parsing = await import("/lib/parse.js");
                const text = "#EXTM3U\n#EXTINF:1.5,Ä\nsegment.ts\n";
                let message;
                try {
                    velhls.parse("#EXTM3U\n#EXTINF:x,\nsegment.ts\n");
                } catch (error) {
                    message = error.message;
                }
                return {
                    uris: velhls.parse(text).uris,
                    durations: [...parsing.parse(text).durations],
                    rules: velhls.check(text).findings.map(({ rule }) => rule),
                    message,
                };
            });
            assert.deepEqual(seen.uris, ["segment.ts"]);
            assert.deepEqual(seen.durations, [1.5]);
            assert.ok(seen.rules.includes("target-duration-missing"), seen.rules.join());
            assert.match(seen.message, /^line 2: EXTINF: /);
        }));
}
