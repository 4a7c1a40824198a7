// Runs the tests: `unit` by themselves, the others in the browser of that name.
// usage: node test.mjs [--name PATTERN] [unit] [chromium] [webkit] [firefox]
import { execFileSync, spawnSync } from "node:child_process";
import { mkdirSync, readdirSync, rmSync } from "node:fs";
import { basename, join } from "node:path";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";

process.chdir(fileURLToPath(new URL("..", import.meta.url)));
const { positionals: suites, values: options } = parseArgs({ allowPositionals: true, options: { name: { type: "string" } } });
const patterns = options.name ? [`--test-name-pattern=${options.name}`] : [];
const out = "build/tests";

rmSync(out, { recursive: true, force: true });
mkdirSync(out, { recursive: true });
execFileSync(process.execPath, ["tools/bundle.mjs", "--out", "build/app"], { stdio: "inherit" });

const testsOf = (folder) => readdirSync(folder).filter((name) => name.endsWith(".test.ts")).map((name) => join(folder, name));
const sources = [...testsOf("tests/unit"), ...testsOf("tests/browsers")];
execFileSync(
  "esbuild",
  [...sources, "--bundle", "--platform=node", "--format=esm", "--packages=external", "--outdir=" + out, "--outbase=tests", "--sourcemap=inline", "--out-extension:.js=.mjs", "--jsx=automatic", "--jsx-import-source=preact", "--log-level=warning"],
  { stdio: "inherit" },
);

let status = 0;
for (const suite of suites) {
  const folder = suite === "unit" ? "tests/unit" : "tests/browsers";
  const files = testsOf(folder).map((source) => join(out, basename(folder), basename(source).replace(/\.ts$/, ".mjs")));
  console.error(`== ${suite}`);
  const run = spawnSync(process.execPath, ["--test", ...patterns, ...files], { stdio: "inherit", env: { ...process.env, NAVREL_BROWSER_ENGINE: suite } });
  if (run.status !== 0) status = 1;
}
process.exit(status);
