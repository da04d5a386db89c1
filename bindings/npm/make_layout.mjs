// Writes what of velhls.h JavaScript needs to know:
//
//     node make_layout.mjs HEADER OUT_JS OUT_C
//
// OUT_JS holds of each structure its size, where its fields lie, and a function that makes an object of the one at an address;
// of options, one that writes them there. OUT_C holds assertions that every offset in it is that of the compiler, so that no other layout can be built.
import { readFileSync, writeFileSync } from "node:fs";

const [header, javascript, assertions] = process.argv.slice(2);
const text = readFileSync(header, "utf8");

// Of wasm32: size, alignment, and what reads a value at an address.
const numbers = {
    size_t: [4, (at) => `view.getUint32(${at}, true)`],
    uint32_t: [4, (at) => `view.getUint32(${at}, true)`],
    int32_t: [4, (at) => `view.getInt32(${at}, true)`],
    uint64_t: [8, (at) => `view.getUint32(${at} + 4, true) * 4294967296 + view.getUint32(${at}, true)`],
    int64_t: [8, (at) => `view.getInt32(${at} + 4, true) * 4294967296 + view.getUint32(${at}, true)`],
    double: [8, (at) => `view.getFloat64(${at}, true)`],
};
const pointer = [4, (at) => `view.getUint32(${at}, true)`];
const string = [8, (at) => `memory.text(view.getUint32(${at}, true), view.getUint32(${at} + 4, true))`, 4];
// int32_t is a truth value everywhere else.
const integers = new Set(["version"]);

const enumerations = new Map();
for (const [, type, name] of text.matchAll(/^typedef (u?int32_t) (velhls_\w+);$/gm)) enumerations.set(name, numbers[type]);

const camel = (name) => name.replace(/_(\w)/g, (_, letter) => letter.toUpperCase());

function kindOf(type, isPointer, name) {
    if (isPointer) return pointer;
    if (type === "velhls_string") return string;
    if (enumerations.has(type)) return enumerations.get(type);
    if (type === "int32_t" && !integers.has(name)) return [4, (at) => `view.getInt32(${at}, true) !== 0`];
    if (!(type in numbers)) throw new Error(`${header}: ${name}: expected a type that is known, seen ${type}`);
    return numbers[type];
}

const aligned = (offset, alignment) => Math.ceil(offset / alignment) * alignment;

// The three fields of a byte range are one object, or null.
function withByteRange(fields) {
    const at = (name) => fields.findIndex(({ field }) => field === name);
    if (at("hasByteRange") < 0 || at("byteRangeLength") < 0) return fields;
    const [has, length, offset] = ["hasByteRange", "byteRangeLength", "byteRangeOffset"].map((name) => fields[at(name)].read);
    const range = { field: "byteRange", read: `${has} ? { length: ${length}, offset: ${offset} } : null` };
    return fields.flatMap((field) => {
        if (field.field === "hasByteRange") return [range];
        return field.field.startsWith("byteRange") ? [] : [field];
    });
}

function reader(fields) {
    const members = fields.map(({ field, read }) => `            ${field}: ${read},\n`).join("");
    return `    read(memory, at) {\n        const view = memory.view;\n        return {\n${members}        };\n    },\n`;
}

// All options are 32-bit numbers, or truth values.
function writer(fields) {
    const values = fields.map(({ field }) => field).join(", ");
    const writes = fields.map(({ field, offset }) => `        view.setInt32(at + ${offset}, ${field}, true);\n`).join("");
    return `    write(memory, at, { ${values} }) {\n        const view = memory.view;\n${writes}    },\n`;
}

function described(name, size, fields) {
    const offsets = fields.map(({ field, offset }) => `${field}: ${offset}`).join(", ");
    const call = name.endsWith("_options") ? writer(fields) : reader(withByteRange(fields));
    return `export const ${name} = {\n    size: ${size},\n    offsets: { ${offsets} },\n${call}};\n`;
}

const structures = [];
const asserted = [];
for (const [, name, body] of text.matchAll(/^typedef struct (velhls_\w+) \{\n([^}]*)^\} \1;$/gm)) {
    if (name === "velhls_string") continue;
    const fields = [];
    let offset = 0;
    let alignmentOfAll = 4;
    for (const line of body.replaceAll(/\/\/\/.*$/gm, "").split(";")) {
        if (line.trim() === "") continue;
        const [, type, star, field] = /^(?:const )?(\w+)(\*?) (\w+)$/.exec(line.trim());
        const [size, read, alignment = size] = kindOf(type, star !== "", field);
        offset = aligned(offset, alignment);
        alignmentOfAll = Math.max(alignmentOfAll, alignment);
        asserted.push(`_Static_assert(offsetof(${name}, ${field}) == ${offset}, "${name}.${field}");`);
        if (field !== "size") fields.push({ field: camel(field), read: read(`at + ${offset}`), offset });
        offset += size;
    }
    const size = aligned(offset, alignmentOfAll);
    asserted.push(`_Static_assert(sizeof(${name}) == ${size}, "${name}");`);
    structures.push(described(name, size, fields));
}
if (structures.length === 0) throw new Error(`${header}: expected structures, seen none`);
const made = "// Made of velhls.h by make_layout.mjs.\n";
writeFileSync(javascript, `${made}\n${structures.join("\n")}`);
writeFileSync(assertions, `${made}#include <stddef.h>\n\n#include "velhls.h"\n\n${asserted.join("\n")}\n`);
