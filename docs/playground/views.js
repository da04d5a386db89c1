// The model, the document, and what was changed.
import { structuredPatch } from "diff";

import { element, table } from "./elements.js";

const mostRows = 500;

const shownValue = (value) => {
    if (value === null || value === undefined) return "—";
    if (value instanceof Map) return [...value].map(([name, text]) => `${name}=${text}`).join(", ") || "—";
    if (typeof value === "object") return JSON.stringify(value);
    return value === "" ? "—" : String(value);
};

function recordsTable(title, list) {
    const records = [];
    for (let index = 0; index < Math.min(list.length, mostRows); ++index) records.push(list.at(index));
    const heads = Object.keys(records[0]).filter((name) =>
        records.some((record) => !["", 0, false, null].includes(record[name])),
    );
    const more = list.length > mostRows ? [element("p", { className: "note" }, `The first ${mostRows} of ${list.length}.`)] : [];
    return [
        element("h3", {}, `${title} (${list.length})`),
        table(
            title,
            ["place", ...heads],
            records.map((record, index) => [String(index), ...heads.map((name) => shownValue(record[name]))]),
        ),
        ...more,
    ];
}

const lists = [
    ["Segments", "segments"],
    ["Variants", "variants"],
    ["I-frame variants", "iFrameVariants"],
    ["Renditions", "renditions"],
    ["Session data", "sessionData"],
    ["Session keys", "sessionKeys"],
];

/** What `parse` makes of a text, or why it does not. */
export function showModel(panel, library, source, kind) {
    let playlist;
    try {
        playlist = library.parse(source, { kind });
    } catch (error) {
        panel.replaceChildren(element("p", { className: "rejected" }, `The library rejects this playlist: ${error.message}`));
        return;
    }
    const parts = [element("h3", {}, playlist.kind === "master" ? "Master playlist" : "Media playlist")];
    parts.push(
        table(
            "Fields",
            ["field", "value"],
            Object.entries(playlist).map(([name, value]) => [name, shownValue(value)]),
        ),
    );
    for (const [title, name] of lists) if (playlist[name]?.length > 0) parts.push(...recordsTable(title, playlist[name]));
    playlist.free();
    panel.replaceChildren(...parts);
}

/** Every line, whatever the models make of it. */
export function showDocument(panel, text) {
    const rows = [];
    const { lines } = text;
    for (let index = 0; index < Math.min(lines.length, mostRows); ++index) {
        const { number, kind, name, isKnown, text: whole } = lines.at(index);
        const attributes = kind === "tag" ? text.attributes(number).filter(({ isWellFormed }) => isWellFormed) : [];
        const what = kind === "tag" ? `${name}${isKnown ? "" : " (unknown)"}` : kind;
        const value = attributes.length > 0 ? attributes.map((each) => `${each.name} = ${each.value}`).join("\n") : whole;
        rows.push([String(number), what, value]);
    }
    const shown = table("Lines", ["line", "what", "text, or attributes"], rows);
    shown.classList.add("wrapping");
    const more =
        lines.length > mostRows ? [element("p", { className: "note" }, `The first ${mostRows} of ${lines.length} lines.`)] : [];
    panel.replaceChildren(shown, ...more);
}

const classes = { "+": "added", "-": "removed" };
const visible = (line) => line.replaceAll("\r", "␍");

function diffOf(before, after) {
    const patch = structuredPatch("", "", before, after, "", "", { context: 3, timeout: 2000 });
    if (patch === undefined) return element("p", {}, "The texts differ in too much to be shown.");
    const lines = patch.hunks.flatMap(({ oldStart, newStart, lines }) => [
        element("span", { className: "about" }, `@@ -${oldStart} +${newStart} @@`),
        ...lines.map((line) => element("span", { className: classes[line[0]] ?? "" }, visible(line))),
    ]);
    return element("pre", { className: "diff", tabIndex: 0, role: "region", "aria-label": "Changed lines" }, ...lines);
}

const sentenceOf = ({ kind, path, what, oldText, newText }) => {
    const values = kind === "changed" ? `: ${oldText || "nothing"} → ${newText || "nothing"}` : "";
    return `${kind}: ${path}${what === "" ? "" : `, ${what}`}${values}`;
};

/** What was changed since the text was opened, as lines and as a server's next version. */
export function showChanges(panel, library, before, after, textOf) {
    const [old, now] = [textOf(before), textOf(after)];
    if (old === now) {
        panel.replaceChildren(element("p", {}, "Nothing was changed since this text was opened."));
        return;
    }
    const parts = [element("h3", {}, "Lines"), diffOf(old, now)];
    try {
        const { changes, findings } = library.compare(before, after);
        parts.push(element("h3", {}, `What changed (${changes.length})`));
        parts.push(element("ul", {}, ...changes.slice(0, mostRows).map((change) => element("li", {}, sentenceOf(change)))));
        parts.push(element("h3", {}, `Of this a live playlist may not change (${findings.length})`));
        parts.push(element("ul", {}, ...findings.map(({ message, rule }) => element("li", {}, `${message} [${rule}]`))));
    } catch (error) {
        if (error.name !== "RefusedError") throw error;
        parts.push(element("p", { className: "note" }, `Not compared: ${error.message}.`));
    }
    panel.replaceChildren(...parts);
}
