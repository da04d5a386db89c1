// Making elements. Nothing of a playlist is ever read as HTML.

/** An element with properties, listeners ("onclick") and attributes, and what stands in it. */
export function element(name, properties = {}, ...children) {
    const made = document.createElement(name);
    for (const [key, value] of Object.entries(properties)) {
        if (key in made) made[key] = value;
        else made.setAttribute(key, value);
    }
    made.append(...children);
    return made;
}

/** A table with a caption for screen readers. */
export function table(label, heads, rows) {
    const cells = (values, name, properties) => values.map((value) => element(name, properties, value));
    return element(
        "div",
        { className: "tablebox", tabIndex: 0, role: "region", "aria-label": label },
        element(
            "table",
            {},
            element("thead", {}, element("tr", {}, ...cells(heads, "th", { scope: "col" }))),
            element("tbody", {}, ...rows.map((row) => element("tr", {}, ...cells(row, "td")))),
        ),
    );
}
