// Runs measure.mjs for every work and playlist, in turns, and prints a table: node compare.mjs FOLDER PROCESSES
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

const [folder, processes] = process.argv.slice(2);
const measure = fileURLToPath(new URL("measure.mjs", import.meta.url));
const playlists = ["vod", "rich"];
const asked = ["{uri, duration}", "whole segments", "durations"];
const programs = ["velhls", "m3u8-parser"];

function secondsOf(work, playlist) {
    const output = execFileSync(process.execPath, [measure, folder, work, join(folder, "inputs", `${playlist}.m3u8`)], {
        encoding: "utf8",
    });
    return JSON.parse(output).seconds;
}

const versions = programs.map(
    (name) => `${name} ${JSON.parse(readFileSync(join(folder, "node_modules", name, "package.json"))).version}`,
);
console.log(
    `${versions.join(", ")}, node ${process.version}; the least of ${processes} processes, each the median of its warm runs, in processor time.\n`,
);
console.log(`| 100,000 segments | ${programs.join(" | ")} | times |\n|---|--:|--:|--:|`);
const inMilliseconds = (seconds) => `${(seconds * 1000).toPrecision(3)} ms`;
for (const playlist of playlists) {
    for (const what of asked) {
        const least = programs.map(() => Infinity);
        for (let turn = 0; turn < Number(processes); ++turn) {
            programs.forEach((program, index) => {
                least[index] = Math.min(least[index], secondsOf(`${program}: ${what}`, playlist));
            });
        }
        console.log(
            `| ${playlist}: ${what} | ${least.map(inMilliseconds).join(" | ")} | ${(least[1] / least[0]).toFixed(1)} × |`,
        );
    }
}
