// Bundles the tests, and runs them with Node's test runner. usage: node tests/run.mjs [NAME...], such as model
import {build} from "esbuild";
import {spawn} from "node:child_process";
import {mkdtemp, readdir, rm} from "node:fs/promises";
import path from "node:path";

const here = path.dirname(new URL(import.meta.url).pathname);
const wanted = process.argv.slice(2);
const tests = (await readdir(here)).filter(
  file => file.endsWith(".test.ts") && (wanted.length === 0 || wanted.includes(file.split(".")[0])),
);
const out = await mkdtemp(path.join(here, "../node_modules/.tests-"));
const stop = status => rm(out, {recursive: true}).then(() => process.exit(status));

await build({
  entryPoints: tests.map(file => path.join(here, file)),
  outdir: out,
  outExtension: {".js": ".mjs"},
  bundle: true,
  platform: "node",
  format: "esm",
  external: ["playwright-core"],
  logLevel: "warning",
  plugins: [
    {
      name: "no-schemas",
      setup(bundle) {
        bundle.onResolve({filter: /^olt-schemas$/}, () => ({path: "olt-schemas", namespace: "none"}));
        bundle.onLoad({filter: /.*/, namespace: "none"}, () => ({contents: "{}", loader: "json"}));
      },
    },
  ],
});
const child = spawn(process.execPath, ["--test", ...tests.map(file => path.join(out, file.replace(/ts$/, "mjs")))], {
  stdio: "inherit",
});
child.on("exit", status => void stop(status ?? 1));
