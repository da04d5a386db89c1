#!/usr/bin/env node
// Runs files of SQL over a catalogue's JSON lines, one after the other in one database, and writes what the last statement of
// each gives, as JSON lines:
//
//     query.mjs LINES OUT FILE.sql...
//
// LINES is a file of JSON lines or a pattern for many ('parts/*.jsonl'); OUT is the folder that the SQL writes files to.
import { readFileSync } from "node:fs";
import { DuckDBInstance } from "@duckdb/node-api";

const [lines, out, ...files] = process.argv.slice(2);
const connection = await (await DuckDBInstance.create(":memory:")).connect();
const quoted = (text) => `'${text.replaceAll("'", "''")}'`;
await connection.run(`SET VARIABLE lines = ${quoted(lines)}; SET VARIABLE out = ${quoted(out)}`);
for (const file of files) {
  const reader = await connection.runAndReadAll(readFileSync(file, "utf8"));
  // Counts are 64-bit integers there; below 2^53 a number holds them.
  for (const row of reader.getRowObjectsJS())
    console.log(JSON.stringify(row, (key, value) => (typeof value === "bigint" ? Number(value) : value)));
}
