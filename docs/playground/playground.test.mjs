// The page in a browser: what it shows, that it keeps bytes, that it can be used without a mouse, and that nothing leaves it.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";

const url = new URL("playground.html", import.meta.url).href;
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

let browser;
before(async () => {
    browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
});
after(() => browser.close());

/** Opens the page, and fails when it asks for anything or throws. */
async function withPage(use, options = {}) {
    const page = await browser.newPage({ viewport: { width: 1280, height: 800 }, ...options });
    const asked = [];
    const thrown = [];
    page.on("request", (request) => asked.push(request.url()));
    page.on("requestfailed", (request) => {
        if (request.failure().errorText === "csp") asked.splice(asked.indexOf(request.url()), 1);
    });
    page.on("pageerror", (error) => thrown.push(error.message));
    await page.goto(url);
    await page.waitForFunction(() => document.getElementById("summary").textContent !== "Loading…");
    await use(page);
    assert.deepEqual(thrown, []);
    assert.deepEqual(
        asked.filter((each) => !each.startsWith("blob:")),
        [url],
    );
    await page.close();
}

const summaryOf = (page) => page.textContent("#summary");
const typed = async (page, text) => {
    const before = await summaryOf(page);
    await page.fill("#text", text);
    await page.waitForFunction((seen) => document.getElementById("summary").textContent !== seen, before);
};
const opened = (page, name, bytes) =>
    page.setInputFiles("#open", { name, mimeType: "application/vnd.apple.mpegurl", buffer: Buffer.from(bytes) });
const saved = async (page) => {
    const [download] = await Promise.all([page.waitForEvent("download"), page.click("#save")]);
    return readFileSync(await download.path());
};

const broken = '#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1280000, CODECS="mp4a.40.2",\nlow.m3u8\n';
const mended = '#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS="mp4a.40.2"\nlow.m3u8\n';

test("a typed playlist is checked, with carets at what is found", () =>
    withPage(async (page) => {
        await typed(page, broken);
        assert.match(await summaryOf(page), /^Master playlist: 2 errors, /);
        const excerpt = await page.textContent("#findings li:first-child pre");
        const [line, carets] = excerpt.split("\n");
        assert.equal(line, broken.split("\n")[1]);
        assert.equal(carets.indexOf("^"), line.indexOf(" CODECS"));
        assert.equal(carets.trim(), "^");
        assert.equal(await page.textContent("#findings li:first-child mark"), " ");
    }));

test("a fix mends one finding, and all are mended at once", () =>
    withPage(async (page) => {
        await typed(page, broken);
        await page.click("#findings .fix");
        assert.equal(await page.inputValue("#text"), mended);
        await typed(page, broken);
        await page.click("#mend");
        assert.equal(await page.inputValue("#text"), mended);
        await page.click("#tab-changes");
        assert.match(await page.textContent("#panel-changes .added"), /^\+/);
        await page.click("#revert");
        assert.equal(await page.textContent("#panel-changes"), "Nothing was changed since this text was opened.");
    }));

test("the model shows fields and records, or why there are none", () =>
    withPage(async (page) => {
        await page.click("#tab-model");
        assert.match(await page.textContent("#panel-model"), /^The library rejects this playlist: line 4: /);
        await typed(page, "#EXTM3U\n#EXTINF:6,\nsegment1.ts\n#EXTINF:4.5,\nsegment2.ts\n");
        assert.deepEqual(await page.locator("#panel-model h3").allTextContents(), ["Media playlist", "Segments (2)"]);
        assert.match(await page.textContent("#panel-model"), /segment2\.ts/);
    }));

test("the document shows every line and its attributes", () =>
    withPage(async (page) => {
        await page.click("#tab-document");
        await typed(page, '#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,NAME="Ä"\n# comment\n');
        assert.deepEqual(await page.locator("#panel-document tbody tr").allTextContents(), [
            "1EXTM3U#EXTM3U",
            "2EXT-X-MEDIATYPE = AUDIO\nNAME = Ä",
            "3comment# comment",
        ]);
    }));

test("a change that a live playlist may not make is told", () =>
    withPage(async (page) => {
        const before = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n";
        await opened(page, "live.m3u8", before);
        await page.click("#tab-changes");
        await page.fill("#text", before.replace("DURATION:6", "DURATION:7"));
        await page.waitForSelector("#panel-changes li");
        assert.match(await page.textContent("#panel-changes"), /target-duration-changed/);
    }));

test("a place that is chosen is selected in the text, whatever stands before it", () =>
    withPage(async (page) => {
        await typed(page, '#EXTM3U\n#EXT-X-STREAM-INF:NAME="Äß🎬", BANDWIDTH=1\nlow.m3u8\n');
        await page.locator("#findings li", { hasText: "attribute-white-space" }).locator(".place").first().click();
        const chosen = await page.$eval("#text", (area) => area.value.slice(area.selectionStart, area.selectionEnd));
        assert.equal(chosen, " ");
    }));

test("playlists that are opened or dropped are chosen from a list", () =>
    withPage(async (page) => {
        await opened(page, "one.m3u8", "#EXTM3U\n#EXTINF:1,\none.ts\n");
        await page.waitForFunction(() => document.getElementById("text").value.includes("one.ts"));
        await page.evaluate(() => {
            const dataTransfer = new DataTransfer();
            dataTransfer.items.add(new File(["#EXTM3U\n#EXTINF:1,\ntwo.ts\n"], "two.m3u8"));
            document.body.dispatchEvent(new DragEvent("drop", { dataTransfer, bubbles: true, cancelable: true }));
        });
        await page.waitForFunction(() => document.getElementById("text").value.includes("two.ts"));
        assert.deepEqual(await page.locator("#playlists option").allTextContents(), ["example.m3u8", "one.m3u8", "two.m3u8"]);
        await page.selectOption("#playlists", { label: "one.m3u8" });
        assert.match(await page.inputValue("#text"), /one\.ts/);
    }));

test("bytes stay as they are, by fixes too", () =>
    withPage(async (page) => {
        const bytes = Buffer.concat([
            Buffer.from("#EXTM3U\r\n#EXT-X-STREAM-INF:BANDWIDTH=1,\r\nlow"),
            Buffer.from([0xff, 0x00]),
            Buffer.from(".m3u8\r\n"),
        ]);
        await opened(page, "bytes.m3u8", bytes);
        await page.waitForFunction(() => document.getElementById("note").textContent.includes("not UTF-8"));
        assert.deepEqual(await saved(page), bytes);
        await page.click("#mend");
        assert.deepEqual(await saved(page), Buffer.from(bytes.toString("latin1").replace("=1,\r\n", "=1\r\n"), "latin1"));
    }));

test("line ends stay as they are when one types", () =>
    withPage(async (page) => {
        await opened(page, "crlf.m3u8", "#EXTM3U\r\n#EXTINF:1,\r\nsegment.ts\r\n");
        await page.waitForFunction(() => document.getElementById("text").value.includes("segment.ts"));
        await page.fill("#text", "#EXTM3U\n#EXTINF:2,\nsegment.ts\n");
        assert.equal((await saved(page)).toString(), "#EXTM3U\r\n#EXTINF:2,\r\nsegment.ts\r\n");
    }));

test("what stands in a playlist is never read as HTML", () =>
    withPage(async (page) => {
        const image = '<img src=x onerror="document.title=1"></script><script>document.title=2</script>';
        await typed(page, `#EXTM3U\n#EXT-X-${image}\n#EXTINF:1,${image}\n${image}\n${image}`);
        for (const tab of ["model", "document", "changes", "findings"]) {
            await page.click(`#tab-${tab}`);
            assert.equal(await page.locator("img, main script").count(), 0);
        }
        assert.equal(await page.title(), "velhls playground");
    }));

test("the policy lets nothing out and nothing in", () =>
    withPage(async (page) => {
        const blocked = await page.evaluate(async () => {
            const directives = [];
            document.addEventListener("securitypolicyviolation", ({ effectiveDirective }) => directives.push(effectiveDirective));
            await fetch("https://example.com/").catch(() => {});
            const script = document.createElement("script");
            script.textContent = "document.title = 'changed'";
            document.body.append(script);
            document.body.append(Object.assign(document.createElement("img"), { src: "https://example.com/x.png" }));
            document.body.append(Object.assign(document.createElement("iframe"), { src: "https://example.com/" }));
            await new Promise((done) => setTimeout(done, 100));
            return directives.sort();
        });
        assert.deepEqual(blocked, ["connect-src", "frame-src", "img-src", "script-src-elem"]);
        assert.equal(await page.title(), "velhls playground");
    }));

test("the keyboard reaches everything", () =>
    withPage(async (page) => {
        const focused = () => page.evaluate(() => document.activeElement.id || document.activeElement.className);
        const order = [];
        for (let i = 0; i < 16; ++i) {
            await page.keyboard.press("Tab");
            order.push(await focused());
        }
        const wanted = [
            "open",
            "playlists",
            "save",
            "text",
            "tab-findings",
            "panel-findings",
            "severity",
            "lossy",
            "guess",
            "mend",
            "place",
        ];
        assert.deepEqual(
            order.filter((id) => wanted.includes(id)),
            wanted,
        );
        await page.focus("#tab-findings");
        for (const [key, tab] of [
            ["ArrowRight", "tab-model"],
            ["End", "tab-changes"],
            ["ArrowRight", "tab-findings"],
            ["ArrowLeft", "tab-changes"],
            ["Home", "tab-findings"],
        ]) {
            await page.keyboard.press(key);
            assert.equal(await focused(), tab);
            assert.equal(await page.getAttribute(`#${tab}`, "aria-selected"), "true");
            assert.equal(await page.isVisible(`#${tab.replace("tab", "panel")}`), true);
        }
    }));

test("what was found is announced", () =>
    withPage(async (page) => {
        assert.equal(await page.getByRole("status").textContent(), await summaryOf(page));
    }));

for (const colorScheme of ["light", "dark"]) {
    test(`axe finds nothing in any view, ${colorScheme}`, () =>
        withPage(
            async (page) => {
                await page.evaluate(axe);
                for (const tab of ["findings", "model", "document", "changes"]) {
                    if (tab === "model") await typed(page, mended);
                    await page.click(`#tab-${tab}`);
                    const { violations } = await page.evaluate(() => globalThis.axe.run());
                    assert.deepEqual(
                        violations.map(({ id, nodes }) => [id, nodes.map(({ html }) => html)]),
                        [],
                        tab,
                    );
                }
            },
            { colorScheme },
        ));
}

test("the page is dark where that is wanted", async () => {
    const colours = [];
    for (const colorScheme of ["light", "dark"]) {
        await withPage(async (page) => colours.push(await page.$eval("body", (body) => getComputedStyle(body).backgroundColor)), {
            colorScheme,
        });
    }
    assert.deepEqual(colours, ["rgb(246, 247, 249)", "rgb(20, 23, 27)"]);
});

test("a narrow page shows one below the other", () =>
    withPage(
        async (page) => {
            const [input, output] = await page.$$eval("section", (sections) =>
                sections.map((each) => each.getBoundingClientRect().toJSON()),
            );
            assert.ok(output.top >= input.bottom);
            assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth));
        },
        { viewport: { width: 400, height: 800 } },
    ));

test("a large playlist is checked while one waits", () =>
    withPage(async (page) => {
        const text = `#EXTM3U\n#EXT-X-TARGETDURATION:6\n${"#EXTINF:6,\nsegment.ts\n".repeat(50_000)}`;
        await opened(page, "large.m3u8", text);
        await page.waitForFunction(() => document.getElementById("summary").textContent.startsWith("Media playlist"));
        await page.click("#tab-model");
        assert.match(await page.textContent("#panel-model"), /Segments \(50000\)/);
    }));
