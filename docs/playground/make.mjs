// Makes the playground, one HTML file:
//
//     node make.mjs NODE_MODULES LIB OUTPUT
//
// NODE_MODULES holds esbuild and diff, LIB is the folder "lib" of the npm package as it was built.
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";

const [modules, lib, output] = process.argv.slice(2).map((path) => resolve(path));
const here = fileURLToPath(new URL(".", import.meta.url));
const { build } = createRequire(join(modules, "x.js"))("esbuild");

const { outputFiles } = await build({
    entryPoints: [join(here, "main.js")],
    bundle: true,
    format: "esm",
    target: "es2022",
    minify: true,
    charset: "utf8",
    write: false,
    nodePaths: [modules],
    alias: { "velhls-lib": lib },
    legalComments: "inline",
});
// A script ends where these characters stand, wherever they stand.
const script = outputFiles[0].text.replaceAll("</script", "<\\/script");
const style = readFileSync(join(here, "style.css"), "utf8");

const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;
const policy = [
    "default-src 'none'",
    `script-src ${hash(script)} 'wasm-unsafe-eval'`,
    `style-src ${hash(style)}`,
    "base-uri 'none'",
    "form-action 'none'",
].join("; ");

const parts = {
    policy,
    style,
    script,
    module: gzipSync(readFileSync(join(lib, "velhls.wasm")), { level: 9 }).toString("base64"),
};
const page = readFileSync(join(here, "page.html"), "utf8").replaceAll(/\{\{(\w+)\}\}/g, (_, name) => parts[name]);
writeFileSync(output, page);
