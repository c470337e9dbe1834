// Bundles the page into dist/. usage: node build.mjs [--schemas FOLDER] [--out FOLDER]
import {build} from "esbuild";
import {cp, mkdir, readFile, rename, rm, writeFile} from "node:fs/promises";
import path from "node:path";
import {parseArgs, promisify} from "node:util";
import {brotliCompress, constants, gzip} from "node:zlib";

const here = path.dirname(new URL(import.meta.url).pathname);
const {values} = parseArgs({
  options: {
    schemas: {type: "string", default: path.join(here, "../build/release/schemas/documents")},
    out: {type: "string", default: path.join(here, "dist")},
  },
});
const out = path.resolve(values.out);
const work = `${out}.new`;

/** The records of all elements and who may set them: what forms are made of. */
const schemas = {
  name: "olt-schemas",
  setup(bundle) {
    bundle.onResolve({filter: /^olt-schemas$/}, () => ({path: "olt-schemas", namespace: "olt-schemas"}));
    bundle.onLoad({filter: /.*/, namespace: "olt-schemas"}, async () => {
      const read = async name => JSON.parse(await readFile(path.join(values.schemas, name), "utf8"));
      const {elements, routes} = await read("index.json");
      const rows = elements.map(async ({path: element, record}) => [
        element.replace("configuration.", ""),
        {
          record: await read(record),
          setBy: routes.find(({path: route, method}) => route === element && method === "set")?.privilege,
        },
      ]);
      return {contents: JSON.stringify(Object.fromEntries(await Promise.all(rows))), loader: "json"};
    });
  },
};

// For the type check, and for editors.
await mkdir(path.join(here, "generated"), {recursive: true});
await cp(path.join(values.schemas, "olt_api.d.ts"), path.join(here, "generated/olt_api.d.ts"));

const {metafile} = await build({
  entryPoints: [path.join(here, "src/main.tsx"), path.join(here, "src/style/main.css")],
  entryNames: "[name]-[hash]",
  outdir: work,
  bundle: true,
  minify: true,
  format: "esm",
  target: "es2022",
  metafile: true,
  logLevel: "warning",
  jsx: "automatic",
  jsxImportSource: "preact",
  plugins: [schemas],
});
const made = Object.keys(metafile.outputs).map(file => path.basename(file));
const named = extension => made.find(file => file.endsWith(extension));

const page = await readFile(path.join(here, "src/index.html"), "utf8");
await writeFile(path.join(work, "index.html"), page.replace("STYLE", named(".css")).replace("SCRIPT", named(".js")));
await cp(path.join(here, "src/icon.svg"), path.join(work, "icon.svg"));

let total = 0;
for (const file of [...made, "index.html"]) {
  const content = await readFile(path.join(work, file));
  const small = await promisify(gzip)(content, {level: 9});
  total += small.length;
  await writeFile(path.join(work, `${file}.gz`), small);
  await writeFile(
    path.join(work, `${file}.br`),
    await promisify(brotliCompress)(content, {params: {[constants.BROTLI_PARAM_SIZE_HINT]: content.length}}),
  );
}
await rm(out, {recursive: true, force: true});
await rename(work, out);
console.log(`${out}: ${(total / 1000).toFixed(0)} kB compressed`);
