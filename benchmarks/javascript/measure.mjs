// Times one work on one playlist in a fresh process:
//
//     node measure.mjs FOLDER WORK FILE
//
// FOLDER holds node_modules. It prints the median of the warm runs in seconds of processor time, those of the garbage collector's
// threads included, and how many records there were.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [folder, work, file] = process.argv.slice(2);
const require = createRequire(resolve(folder, "package.json"));
const { parse } = await import(pathToFileURL(join(resolve(folder), "node_modules/velhls/lib/index.js")));
const { Parser } = require("m3u8-parser");

const secondsOfRuns = 2;

function withPlaylist(text, use) {
    const playlist = parse(text);
    try {
        return use(playlist);
    } finally {
        playlist.free();
    }
}

function parsedByPeer(text) {
    const parser = new Parser();
    parser.push(text);
    parser.end();
    return parser.manifest.segments;
}

function pairs(playlist) {
    const { uris, durations } = playlist;
    return uris.map((uri, index) => ({ uri, duration: durations[index] }));
}

const works = {
    "velhls: {uri, duration}": (text) => withPlaylist(text, pairs),
    "velhls: whole segments": (text) => withPlaylist(text, (playlist) => [...playlist.segments]),
    "velhls: durations": (text) => withPlaylist(text, (playlist) => playlist.durations),
    "m3u8-parser: {uri, duration}": (text) => parsedByPeer(text).map(({ uri, duration }) => ({ uri, duration })),
    "m3u8-parser: whole segments": parsedByPeer,
    "m3u8-parser: durations": (text) => Float64Array.from(parsedByPeer(text), ({ duration }) => duration),
};

function processorSeconds() {
    const { user, system } = process.cpuUsage();
    return (user + system) / 1e6;
}

const text = readFileSync(file, "utf8");
const run = works[work];
const { length } = run(text);
const runs = [];
for (const begin = processorSeconds(); runs.length < 5 || processorSeconds() - begin < secondsOfRuns;) {
    const start = processorSeconds();
    if (run(text).length !== length) throw new Error("the runs differ");
    runs.push(processorSeconds() - start);
}
const warm = runs.slice(Math.floor(runs.length / 3)).sort((left, right) => left - right);
console.log(JSON.stringify({ seconds: warm[Math.floor(warm.length / 2)], records: length }));
