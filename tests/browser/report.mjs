// Opens pages of `velhls report` in Chromium, and looks at what came of them: nothing is requested, nothing runs, the marks are as
// many as the tags, every link leads somewhere, and axe-core finds no violation. Run by scripts/test-report.
//
//   report.mjs COMMAND WORK    the playlists lie in WORK/NAME, the screenshots go to WORK/screenshots
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, readdirSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import axe from 'axe-core';
import { chromium } from 'playwright-core';

const [command, work] = process.argv.slice(2);
const screenshots = join(work, 'screenshots');
mkdirSync(screenshots, { recursive: true });
const browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: ['--no-sandbox'] });

/** Writes the page; 1 is the exit status when something was found. */
function report(name, options) {
    const output = join(work, `${name}.html`);
    try {
        execFileSync(command, ['report', '--config=/dev/null', ...options, '-o', output], { cwd: join(work, name), stdio: 'pipe' });
    } catch (error) {
        if (error.status !== 1) throw error;
    }
    return output;
}

/** Opens the page, and fails for whatever it does but show itself. */
async function open(file, settings, look) {
    const context = await browser.newContext({ viewport: { width: settings.width ?? 1200, height: 900 }, colorScheme: settings.scheme ?? 'light' });
    const page = await context.newPage();
    const url = pathToFileURL(file).href;
    const happened = [];
    page.on('request', (request) => { if (request.url().split('#')[0] !== url) happened.push(`request ${request.url()}`); });
    page.on('dialog', (dialog) => { happened.push(`dialog ${dialog.message()}`); dialog.dismiss(); });
    page.on('console', (message) => happened.push(`console ${message.text()}`));
    page.on('pageerror', (error) => happened.push(`error ${error.message}`));
    if (settings.media) await page.emulateMedia({ media: settings.media });
    await page.goto(url);
    const result = await look(page);
    assert.deepEqual(happened, [], file);
    await context.close();
    return result;
}

/** What a reader of the DOM counts, and what must hold of every page. */
async function lookAtDom(page) {
    return page.evaluate(() => {
        const all = (selector) => [...document.querySelectorAll(selector)];
        const bars = (figure) => ['bar', 'over', 'hollow']
            .flatMap((style) => [...figure.querySelectorAll(`path.${style}`)])
            .reduce((sum, path) => sum + path.getAttribute('d').split('v-').length - 1, 0);
        const ids = all('[id]').map((element) => element.id);
        const timeline = document.querySelector('svg[id^=timeline]');
        const marks = {};
        for (const style of ['discontinuity', 'key', 'map', 'date', 'gap'])
            marks[style] = timeline ? [...timeline.querySelectorAll(`path.${style} > title`)].length : 0;
        return {
            scripts: all('script').length + document.scripts.length,
            handlers: all('*').filter((element) => [...element.attributes].some((each) => each.name.startsWith('on'))).length,
            loaded: all('[src],link,iframe,object,embed,img,image,use,form,base').length,
            foreignLinks: all('a[href]').map((link) => link.getAttribute('href'))
                .filter((href) => !/^(#|https:\/\/(www\.rfc-editor\.org|datatracker\.ietf\.org|developer\.apple\.com)\/)/.test(href)),
            repeatedIds: ids.filter((id, place) => ids.indexOf(id) !== place),
            deadLinks: all('a[href^="#"]').map((link) => link.getAttribute('href').slice(1))
                .filter((target) => document.getElementById(target) === null),
            links: all('a[href^="#"]').length,
            unnamed: all('svg').filter((svg) => !svg.querySelector('title')?.textContent || !svg.querySelector('desc')?.textContent).length,
            bars: timeline ? bars(timeline) : 0,
            marks,
            rungs: all('svg[id^=ladder] path.peak > title').length,
            // A sheet that the policy refused would leave the margin of the browser.
            styled: getComputedStyle(document.querySelector('table, h1')).fontFamily,
            wide: document.documentElement.scrollWidth > document.documentElement.clientWidth,
        };
    });
}

async function findViolations(page) {
    await page.evaluate(axe.source);
    const result = await page.evaluate(() => globalThis.axe.run(document));
    return result.violations.map((each) => `${each.id}: ${each.nodes.slice(0, 3).map((node) => node.html).join(' | ')}`);
}

/** The tags of the media playlists below a folder, as their texts have them. */
function countTags(folder) {
    const counts = { EXTINF: 0, 'EXT-X-DISCONTINUITY': 0, 'EXT-X-KEY': 0, 'EXT-X-MAP': 0, 'EXT-X-PROGRAM-DATE-TIME': 0, 'EXT-X-GAP': 0 };
    for (const name of readdirSync(folder, { recursive: true })) {
        const path = join(folder, name);
        if (!name.endsWith('.m3u8') || statSync(path).isDirectory()) continue;
        for (const line of readFileSync(path, 'latin1').split('\n')) {
            const tag = line.match(/^#(EXT[A-Z-]*)/)?.[1];
            if (tag in counts) ++counts[tag];
        }
    }
    return counts;
}

const pages = {
    example: ['--follow', 'master.m3u8'],
    ffmpeg: ['--follow', 'master.m3u8'],
    advert: ['media.m3u8'],
    live: ['--series', '.'],
    hostile: ['--follow', '--profile=rfc8216,library,apple', '--severity=note', 'master.m3u8'],
};

for (const [name, options] of Object.entries(pages)) {
    const file = report(name, options);
    assert.ok(name === 'hostile' || statSync(file).size < 100000, `${name} has ${statSync(file).size} bytes`);
    const dom = await open(file, {}, lookAtDom);
    assert.deepEqual([dom.scripts, dom.handlers, dom.loaded, dom.unnamed], [0, 0, 0, 0], name);
    assert.deepEqual([dom.foreignLinks, dom.repeatedIds, dom.deadLinks], [[], [], []], name);
    assert.ok(dom.links > 5, name);
    assert.match(dom.styled, /system-ui/, `${name}: the policy let the style sheets in`);
    if (name === 'example' || name === 'ffmpeg' || name === 'advert') {
        const tags = countTags(join(work, name));
        assert.equal(dom.bars, tags.EXTINF, `bars of ${name}`);
        assert.deepEqual(Object.values(dom.marks), Object.values(tags).slice(1), `marks of ${name}`);
    }
    if (name === 'example') assert.equal(dom.rungs, 6);
    for (const settings of [{ scheme: 'light' }, { scheme: 'dark' }, { scheme: 'light', width: 390 }, { media: 'print', width: 800 }]) {
        const variant = settings.media ?? (settings.width ? 'narrow' : settings.scheme);
        await open(file, settings, async (page) => {
            await page.screenshot({ path: join(screenshots, `${name}-${variant}.png`), fullPage: true });
            if (!settings.media) assert.deepEqual(await findViolations(page), [], `axe: ${name} ${variant}`);
            assert.equal((await lookAtDom(page)).wide, false, `${name} ${variant} is wider than the window`);
        });
    }
    console.log(`${name}: ${statSync(file).size} bytes, ${dom.links} links, ${dom.bars} bars, marks ${JSON.stringify(dom.marks)}`);
}

// A finding leads to its line, by mouse and by keyboard.
await open(report('example', pages.example), {}, async (page) => {
    await page.click('#findings a:text("video/540p.m3u8:68")');
    assert.equal(await page.evaluate(() => decodeURIComponent(location.hash)), '#video/540p.m3u8-L68');
    assert.equal(await page.evaluate(() => document.querySelector(':target code').textContent), 'programme.mp4');
    await page.evaluate(() => { location.hash = ''; });
    await page.focus('nav a');
    await page.keyboard.press('Tab');
    await page.keyboard.press('Enter');
    assert.equal(await page.evaluate(() => location.hash), '#timeline1');
});

// What is drawn stands alone, too, and a long playlist is summed up.
for (const [name, options] of [['example', ['--follow', 'master.m3u8']], ['long', ['media.m3u8']]]) {
    const svg = join(work, `${name}.svg`);
    try {
        execFileSync(command, ['report', '--config=/dev/null', '--format=svg', ...options, '-o', svg], { cwd: join(work, name) });
    } catch (error) {
        if (error.status !== 1) throw error;
    }
    const shown = await open(svg, {}, (page) => page.evaluate(() => [document.documentElement.localName, document.querySelectorAll('parsererror, script').length]));
    assert.deepEqual(shown, ['svg', 0], name);
}
const long = report('long', ['media.m3u8']);
assert.ok(statSync(long).size < 100000);
assert.equal((await open(long, {}, lookAtDom)).bars, 160);
writeFileSync(join(work, 'passed'), '');
console.log(`all is well; look at the screenshots in ${screenshots}`);
await browser.close();
