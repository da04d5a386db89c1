// The page: playlists that are open, the text of one of them, and what is shown of it.
import { makeLibrary } from "velhls-lib/library.js";
import { makeMemory } from "velhls-lib/memory.js";

import { element } from "./elements.js";
import { showFindings } from "./findings.js";
import { showChanges, showDocument, showModel } from "./views.js";

const example = `#EXTM3U
#EXT-X-STREAM-INF:BANDWIDTH=1280000, AVERAGE-BANDWIDTH=1000000,CODECS="avc1.4d401f,mp4a.40.2",RESOLUTION=1280x720,AUDIO="stereo"
720p.m3u8
#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=400000,CODECS="avc1.4d401e,mp4a.40.2",RESOLUTION=640*360,AUDIO="stereo",
360p.m3u8
#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="stereo",NAME="Français",LANGUAGE="fr",DEFAULT=YES,URI="audio/fr.m3u8"
#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID="stereo",NAME="English",LANGUAGE="en",DEFAULT=YES,URI="audio/en.m3u8"
`;

const waitBeforeCheck = 200;
const byId = (id) => document.getElementById(id);
const severities = ["note", "warning", "error"];

async function startedLibrary() {
    const packed = Uint8Array.from(atob(byId("module").textContent), (character) => character.charCodeAt(0));
    const unpacked = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
    const bytes = await new Response(unpacked).arrayBuffer();
    return makeLibrary(await makeMemory(async (imports) => (await WebAssembly.instantiate(bytes, imports)).instance));
}

const decoder = new TextDecoder("utf-8", { ignoreBOM: true });
const textOf = (source) => (typeof source === "string" ? source : decoder.decode(source));
const isUtf8 = (bytes) => textOf(bytes).length === 0 || new TextEncoder().encode(textOf(bytes)).length === bytes.length;
// A text area knows line feeds alone.
const displayed = (text) => text.replaceAll("\r\n", "\n").replaceAll("\r", "\n");

/** The playlists that are open: what they were, and what they are now, as strings, or as bytes where these are not UTF-8. */
const playlists = [{ name: "example.m3u8", opened: example, source: example }];
let current = playlists[0];
let shown = "findings";

const library = await startedLibrary();

/** What was typed, with the line ends that the text has. */
function typedSource() {
    const typed = byId("text").value;
    return textOf(current.source).includes("\r\n") ? typed.replaceAll("\n", "\r\n") : typed;
}

function noteOf(source) {
    if (typeof source !== "string")
        return "This text has bytes that are not UTF-8. They are kept until you type; fixes keep them.";
    const hasBoth = source.includes("\r\n") && /(^|[^\r])\n/.test(source);
    return hasBoth || /\r(?!\n)/.test(source)
        ? "This text has line ends of several kinds. Typing makes them one kind; fixes keep them."
        : "";
}

const profiles = () => [...byId("profiles").querySelectorAll("input:checked")].map(({ value }) => value);

function counted(number, what) {
    return `${number} ${what}${number === 1 ? "" : "s"}`;
}

function summaryOf({ kind, rejected, findings }) {
    const what = kind === null ? "No playlist" : `${kind === "master" ? "Master" : "Media"} playlist`;
    const counts = [2, 1, 0].map((place) =>
        counted(
            findings
                .filter(({ severity }) => severity === severities[place])
                .reduce((sum, { suppressed }) => sum + 1 + suppressed, 0),
            severities[place],
        ),
    );
    const verdict = rejected === null ? "The library reads it." : `The library rejects it at line ${rejected.line}.`;
    return `${what}: ${counts.join(", ")}. ${verdict}`;
}

/** Selects a place of the text; its column and length count bytes. */
function go(line, column, length) {
    const area = byId("text");
    const lines = area.value.split("\n");
    const start = lines.slice(0, line - 1).reduce((sum, each) => sum + each.length + 1, 0);
    const bytes = new TextEncoder().encode(lines[line - 1] ?? "");
    const characters = (count) => new TextDecoder().decode(bytes.subarray(0, count)).length;
    area.focus();
    area.setSelectionRange(start + characters(column - 1), start + characters(column - 1 + length));
    const height = area.scrollHeight / lines.length;
    area.scrollTop = Math.max(0, (line - 1) * height - area.clientHeight / 2);
}

function change(source) {
    current.source = source;
    byId("text").value = displayed(textOf(source));
    refresh();
}

function mend(edits) {
    const text = new library.Document(current.source);
    const mended = text.apply(edits);
    text.free();
    change(mended);
}

function refreshFindings(text, report) {
    const least = Number(byId("severity").value);
    showFindings(
        byId("findings"),
        report.findings.filter(({ severity }) => severities.indexOf(severity) >= least),
        {
            lineOf: (line) => (line >= 1 && line <= text.lines.length ? text.line(line).text : ""),
            summaryOf: (rule) => library.rule(rule)?.summary ?? "",
            go,
            mend,
        },
    );
}

const panels = {
    findings: refreshFindings,
    model: (text, report) => showModel(byId("panel-model"), library, current.source, report.kind ?? undefined),
    document: (text) => showDocument(byId("panel-document"), text),
    changes: () => showChanges(byId("panel-changes"), library, current.opened, current.source, textOf),
};

function refresh() {
    const text = new library.Document(current.source);
    try {
        const report = library.check(current.source, { profiles: profiles(), fixes: true });
        byId("summary").textContent = summaryOf(report);
        byId("note").textContent = noteOf(current.source);
        byId("revert").disabled = current.source === current.opened;
        panels[shown](text, report);
    } finally {
        text.free();
    }
}

function show(name) {
    shown = name;
    for (const tab of document.querySelectorAll('[role="tab"]')) {
        const isShown = tab.id === `tab-${name}`;
        tab.setAttribute("aria-selected", isShown);
        tab.tabIndex = isShown ? 0 : -1;
        byId(tab.getAttribute("aria-controls")).hidden = !isShown;
    }
    refresh();
}

function choose(playlist) {
    current = playlist;
    byId("playlists").replaceChildren(
        ...playlists.map((each, index) => element("option", { value: String(index), selected: each === current }, each.name)),
    );
    change(current.source);
}

async function open(files) {
    for (const file of files) {
        const bytes = new Uint8Array(await file.arrayBuffer());
        const source = isUtf8(bytes) ? textOf(bytes) : bytes;
        playlists.push({ name: file.name, opened: source, source });
    }
    if (files.length > 0) choose(playlists.at(-1));
}

function save() {
    const url = URL.createObjectURL(new Blob([current.source], { type: "application/vnd.apple.mpegurl" }));
    element("a", { href: url, download: current.name }).click();
    setTimeout(() => URL.revokeObjectURL(url));
}

/** Arrow keys go from tab to tab, Home and End to the first and last. */
function listenToTabs() {
    const tabs = [...document.querySelectorAll('[role="tab"]')];
    const steps = { ArrowRight: (at) => at + 1, ArrowLeft: (at) => at - 1, Home: () => 0, End: () => tabs.length - 1 };
    tabs.forEach((tab, at) => {
        tab.onclick = () => show(tab.id.slice("tab-".length));
        tab.onkeydown = (event) => {
            const step = steps[event.key];
            if (step === undefined) return;
            event.preventDefault();
            const next = tabs[(step(at) + tabs.length) % tabs.length];
            next.focus();
            next.click();
        };
    });
}

function listenToDrops() {
    const { body } = document;
    body.ondragover = (event) => {
        event.preventDefault();
        body.classList.add("dropping");
    };
    body.ondragleave = (event) => {
        if (event.relatedTarget === null) body.classList.remove("dropping");
    };
    body.ondrop = (event) => {
        event.preventDefault();
        body.classList.remove("dropping");
        open([...event.dataTransfer.files]);
    };
}

let waiting;
byId("text").oninput = () => {
    current.source = typedSource();
    clearTimeout(waiting);
    waiting = setTimeout(refresh, waitBeforeCheck);
};
byId("open").onchange = ({ target }) => open([...target.files]);
byId("playlists").onchange = ({ target }) => choose(playlists[Number(target.value)]);
byId("revert").onclick = () => change(current.opened);
byId("save").onclick = save;
byId("profiles").onchange = refresh;
byId("severity").onchange = refresh;
byId("mend").onclick = () => {
    const options = { profiles: profiles(), lossy: byId("lossy").checked, guess: byId("guess").checked };
    change(library.fix(current.source, options).text);
};
listenToTabs();
listenToDrops();
choose(current);
