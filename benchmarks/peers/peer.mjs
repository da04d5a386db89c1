// Times a parser of the npm registry on one playlist.
//
//   node peer.mjs FOLDER PACKAGE FILE parse|write
//
// where FOLDER holds node_modules; prints what velhls_peer.cpp prints. Garbage is
// collected within the runs or between them, as the engine likes.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [folder, packageName, file, work] = process.argv.slice(2);
const require = createRequire(resolve(folder, "package.json"));

const secondsOfRuns = 0.7;

const packages = {
    "m3u8-parser": async () => {
        const { Parser } = require("m3u8-parser");
        return {
            parse: (text) => {
                const parser = new Parser();
                parser.push(text);
                parser.end();
                return parser.manifest;
            },
            items: (manifest) => [manifest.segments, manifest.playlists, manifest.iFramePlaylists],
        };
    },
    "hls-parser": async () => {
        const parser = require("hls-parser");
        return { ...parser, write: parser.stringify, items: (playlist) => [playlist.segments, playlist.variants] };
    },
    "hls.js": async () => {
        globalThis.self = globalThis; // it expects a browser's window or worker
        const { M3U8Parser } = await import(pathToFileURL(resolve(folder, "node_modules/hls.js/dist/hls.mjs")));
        const base = "https://example.com/";
        return {
            parse: (text) => {
                if (text.includes("#EXTINF:")) return M3U8Parser.parseLevelPlaylist(text, base, 0, "main", 0, null);
                const parsed = M3U8Parser.parseMasterPlaylist(text, base);
                parsed.media = M3U8Parser.parseMasterPlaylistMedia(text, base, parsed);
                return parsed;
            },
            items: (parsed) => [parsed.fragments, parsed.levels, parsed.iframeVariants],
        };
    },
    "m3u8-file-parser": async () => {
        const Parser = require("m3u8-file-parser");
        return {
            parse: (text) => {
                const parser = new Parser();
                parser.read(text);
                return parser.getResult();
            },
            items: (result) => [result.segments],
        };
    },
};

const secondsSince = (start) => Number(process.hrtime.bigint() - start) / 1e9;

function warmSeconds(run) {
    const runs = [];
    const begin = process.hrtime.bigint();
    while (runs.length === 0 || secondsSince(begin) < secondsOfRuns) {
        const start = process.hrtime.bigint();
        run();
        runs.push(secondsSince(start));
    }
    const warm = runs.slice(Math.floor(runs.length / 3)).sort((left, right) => left - right);
    return warm[Math.floor(warm.length / 2)];
}

const text = readFileSync(file, "utf8");
const peer = await packages[packageName]();
const start = process.hrtime.bigint();
const playlist = peer.parse(text);
const first = secondsSince(start);
const items = peer.items(playlist).reduce((sum, list) => sum + (list?.length ?? 0), 0);
const seconds = warmSeconds(work === "parse" ? () => peer.parse(text) : () => peer.write(playlist));
console.log(JSON.stringify({ items, first, seconds }));
