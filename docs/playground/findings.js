// What is wrong with a text: each finding with its line, what the carets point at, and what mends it.
import { element } from "./elements.js";

// Of a longer line a part is shown.
const mostCharacters = 110;
const charactersBefore = 45;

const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** A line in three parts, of which a finding points at the second: its column and length count bytes. */
function partsOf(line, column, length) {
    const bytes = encoder.encode(line);
    const begin = column - 1;
    const part = (from, to) => decoder.decode(bytes.subarray(from, to));
    return [part(0, begin), part(begin, begin + length), part(begin + length)];
}

const shortened = (text, most, fromEnd) => {
    if (text.length <= most) return text;
    return fromEnd ? `…${text.slice(-most)}` : `${text.slice(0, most)}…`;
};

/** Spaces as wide as the text. */
const blank = (text) => [...text].map((character) => (character === "\t" ? "\t" : " ")).join("");

function excerptOf(line, { column, length }) {
    const [before, pointed, after] = partsOf(line, column, length);
    const left = shortened(before, charactersBefore, true);
    const middle = shortened(pointed, mostCharacters - charactersBefore, false);
    const right = shortened(after, mostCharacters - charactersBefore, false);
    const carets = "^".repeat(Math.max([...middle].length, 1));
    return element(
        "pre",
        { tabIndex: 0, role: "group", "aria-label": "The line" },
        left,
        element("mark", {}, middle),
        right,
        "\n",
        element("span", { className: "carets", "aria-hidden": "true" }, blank(left) + carets),
    );
}

function sourceOf({ source, level, clause, suppressed }) {
    const parts = [clause === "" ? source : `${source} (${level})`];
    if (suppressed > 0) parts.push(`and ${suppressed} more of this rule`);
    return parts.join(", ");
}

/** One finding. `lineOf` gives the text of a line; `go` goes to a place, and `mend` applies edits. */
function itemOf(finding, { lineOf, summaryOf, go, mend }) {
    const { severity, rule, line, column, message, related, fixes } = finding;
    const place = ({ line, column, length, ...rest }) =>
        element(
            "button",
            { type: "button", className: "place", title: "Go to this place", onclick: () => go(line, column, length) },
            `${line}:${column}${rest.message ? `: ${rest.message}` : ""}`,
        );
    const item = element(
        "li",
        { className: severity === "note" ? "note-finding" : severity },
        place({ line, column, length: finding.length }),
        " ",
        element("span", { className: "severity" }, severity),
        ` ${message}`,
        excerptOf(lineOf(line), finding),
        element("div", { className: "about" }, element("code", { title: summaryOf(rule) }, rule), ` · ${sourceOf(finding)}`),
    );
    if (related.length > 0) item.append(element("div", { className: "about" }, "See also ", ...related.map(place)));
    const buttons = fixes.map(({ fixClass, sentence, edits }) =>
        element("button", { type: "button", className: "fix", onclick: () => mend(edits) }, `Fix (${fixClass}): ${sentence}`),
    );
    if (buttons.length > 0) item.append(element("div", { className: "fixes" }, ...buttons));
    return item;
}

export function showFindings(list, findings, actions) {
    list.replaceChildren(...findings.map((finding) => itemOf(finding, actions)));
    if (findings.length === 0) list.append(element("p", {}, "Nothing is found by these rules."));
}
