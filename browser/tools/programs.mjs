// The tests and tools that are written in TypeScript, as programs for Node.
import { execFileSync, spawnSync } from "node:child_process";
import { basename } from "node:path";
import { fileURLToPath } from "node:url";

/** Every path of the tools begins here. */
export const browser = fileURLToPath(new URL("..", import.meta.url));
process.chdir(browser);

const kOptions = ["--bundle", "--platform=node", "--format=esm", "--target=node18", "--packages=external", "--sourcemap=inline", "--jsx=automatic", "--jsx-import-source=preact", "--log-level=warning"];

/** Makes the web app as it is served. */
export function makeApp() {
  execFileSync(process.execPath, ["tools/bundle.mjs", "--out", "build/app"], { stdio: "inherit" });
}

/** Makes programs of sources below tests/; they keep their places, with another ending. */
export function makePrograms(sources) {
  execFileSync("esbuild", [...sources, ...kOptions, "--outbase=tests", "--outdir=build/tests", "--out-extension:.js=.mjs"], { stdio: "inherit" });
  return sources.map((source) => source.replace(/^tests/, "build/tests").replace(/\.ts$/, ".mjs"));
}

/** Makes the app and one program, runs that, and ends as it does. */
export function runProgram(source, programArguments) {
  makeApp();
  const [program] = makePrograms([source]);
  const { status } = spawnSync(process.execPath, [program, ...programArguments], { stdio: "inherit" });
  if (status !== 0) console.error(`${basename(program)} failed`);
  process.exit(status ?? 1);
}
