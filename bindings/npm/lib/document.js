// The text of a playlist, understood, and edits that touch no other byte of it.
import { Handle } from "./handle.js";
import * as layout from "./layout.js";
import { List } from "./list.js";
import { described, isBytes } from "./memory.js";
import { kinds, lineKinds } from "./names.js";

/** The class of documents over a module's memory. */
export function makeDocuments(memory) {
    const { calls } = memory;

    function made(call, ...values) {
        memory.done(call(...values, memory.out));
        return memory.made;
    }

    return class Document extends Handle {
        #uris;
        #structure;

        constructor(text) {
            super(
                memory,
                memory.withText(text, (address, length) => made(calls.velhls_document_new, address, length)),
                calls.velhls_document_free,
                isBytes(text),
            );
        }

        free() {
            this.#uris?.free();
            this.#structure?.free();
            super.free();
        }

        get text() {
            const document = Handle.address(this);
            return memory.whole(
                calls.velhls_document_data(document) >>> 0,
                calls.velhls_document_length(document) >>> 0,
                Handle.isOfBytes(this),
            );
        }

        get kind() {
            return kinds[calls.velhls_document_kind(Handle.address(this))];
        }

        get lines() {
            return new List(calls.velhls_document_line_count(Handle.address(this)), (index) => this.line(index + 1));
        }

        line(number) {
            const line = memory.structure(calls.velhls_document_line, Handle.address(this), layout.velhls_line, number);
            line.kind = lineKinds[line.kind];
            return line;
        }

        /** Of one line. */
        attributes(line) {
            const { velhls_attribute } = layout;
            const attributes = made(calls.velhls_attributes_new, Handle.address(this), line);
            try {
                return memory
                    .structures(
                        calls.velhls_attributes_count(attributes),
                        calls.velhls_attributes_get,
                        attributes,
                        velhls_attribute,
                    )
                    .map(({ fault, ...attribute }) => ({ ...attribute, isWellFormed: fault === 0 }));
            } finally {
                calls.velhls_attributes_free(attributes);
            }
        }

        get uris() {
            const uris = this.#urisAddress();
            return new List(calls.velhls_uris_count(uris), (index) => this.#uri(index));
        }

        get segments() {
            const { velhls_structure_segment } = layout;
            return this.#structureList(calls.velhls_structure_segment_count, (structure, index) => {
                const { keyLines, keyLineCount, ...segment } = memory.structure(
                    calls.velhls_structure_get_segment,
                    structure,
                    velhls_structure_segment,
                    index,
                );
                return { ...segment, keyLines: Array.from(new Uint32Array(memory.copy(keyLines, keyLineCount * 4).buffer)) };
            });
        }

        get variants() {
            const { velhls_structure_variant } = layout;
            return this.#structureList(calls.velhls_structure_variant_count, (structure, index) =>
                memory.structure(calls.velhls_structure_get_variant, structure, velhls_structure_variant, index),
            );
        }

        changeAttributes(line, changes) {
            const names = Object.keys(changes);
            return this.#edits((edits) =>
                withTexts(names, (namesAt) =>
                    withTexts(Object.values(changes), (valuesAt) =>
                        calls.velhls_edits_change_attributes(edits, line, namesAt, valuesAt, names.length, memory.error),
                    ),
                ),
            );
        }

        replaceValue(line, value) {
            return this.#edits((edits) =>
                memory.withText(value, (address, length) =>
                    calls.velhls_edits_replace_value(edits, line, address, length, memory.error),
                ),
            );
        }

        /** The URI of this place among `uris`. */
        replaceUri(index, uri) {
            const uris = this.#urisAddress();
            return this.#edits((edits) =>
                memory.withText(uri, (address, length) =>
                    calls.velhls_edits_replace_uri(edits, uris, index, address, length, memory.error),
                ),
            );
        }

        insertBefore(line, text) {
            return this.#edits((edits) =>
                memory.withText(text, (address, length) => calls.velhls_edits_insert_before(edits, line, address, length)),
            );
        }

        insertAfter(line, text) {
            return this.#edits((edits) =>
                memory.withText(text, (address, length) => calls.velhls_edits_insert_after(edits, line, address, length)),
            );
        }

        removeLines(first, last) {
            return this.#edits((edits) => calls.velhls_edits_remove_lines(edits, first, last));
        }

        removeSegment(index) {
            const structure = this.#structureAddress();
            return this.#edits((edits) => calls.velhls_edits_remove_segment(edits, structure, index));
        }

        removeVariant(index) {
            const structure = this.#structureAddress();
            return this.#edits((edits) => calls.velhls_edits_remove_variant(edits, structure, index));
        }

        /** The text with these edits, which may come from anywhere and in lists of lists. */
        apply(...edits) {
            return this.#withEdits((address) => {
                for (const { offset, length, replacement } of edits.flat(Infinity)) {
                    memory.withText(replacement, (at, size) =>
                        memory.done(calls.velhls_edits_replace_bytes(address, offset, length, at, size)),
                    );
                }
                memory.doneOrTold(calls.velhls_edits_apply(address, memory.out, memory.error));
                return memory.takeText(Handle.isOfBytes(this));
            });
        }

        #uri(index) {
            return memory.structure(calls.velhls_uris_get, this.#urisAddress(), layout.velhls_uri, index);
        }

        #urisAddress() {
            const document = Handle.address(this);
            this.#uris ??= new Handle(memory, made(calls.velhls_uris_new, document), calls.velhls_uris_free);
            return Handle.address(this.#uris);
        }

        #structureAddress() {
            const document = Handle.address(this);
            this.#structure ??= new Handle(memory, made(calls.velhls_structure_new, document), calls.velhls_structure_free);
            return Handle.address(this.#structure);
        }

        #structureList(count, make) {
            return new List(count(this.#structureAddress()), (index) => make(this.#structureAddress(), index));
        }

        #withEdits(use) {
            const edits = made(calls.velhls_edits_new, Handle.address(this));
            try {
                return use(edits);
            } finally {
                calls.velhls_edits_free(edits);
            }
        }

        /** The edits that a call adds. */
        #edits(add) {
            return this.#withEdits((edits) => {
                memory.forget();
                memory.doneOrTold(add(edits));
                return Array.from({ length: calls.velhls_edits_count(edits) }, (_, index) =>
                    memory.edit(calls.velhls_edits_get, edits, index),
                );
            });
        }
    };

    /** Calls `use` with the address of an array of texts; null stands for none. */
    function withTexts(texts, use) {
        return memory.withBytes(texts.length * 8, (at) => {
            const put = (index) => {
                if (index === texts.length) return use(at);
                const store = (address, length) => {
                    memory.view.setUint32(at + index * 8, address, true);
                    memory.view.setUint32(at + index * 8 + 4, length, true);
                    return put(index + 1);
                };
                return texts[index] === null ? store(0, 0) : memory.withText(texts[index], store);
            };
            return put(0);
        });
    }
}
