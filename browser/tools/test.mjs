// Runs the tests: `unit` by themselves, the others in the browser of that name.
// usage: node test.mjs [--name PATTERN] [--file PART] [unit] [chromium] [webkit] [firefox]
import { spawnSync } from "node:child_process";
import { readdirSync } from "node:fs";
import { join } from "node:path";
import { parseArgs } from "node:util";
import { makeApp, makePrograms } from "./programs.mjs";

const { positionals: suites, values: options } = parseArgs({ allowPositionals: true, options: { name: { type: "string" }, file: { type: "string" } } });
const patterns = options.name ? [`--test-name-pattern=${options.name}`] : [];

/** All of them: journeys mostly wait, for the page or for the server. */
const kFilesAtATime = 4;

/** A suite takes three minutes on two processors; one that takes this long hangs, and fails with what it came to. */
const kSuiteMilliseconds = 900_000;

const testsOf = (folder) => readdirSync(folder).filter((name) => name.endsWith(".test.ts")).map((name) => join(folder, name));

makeApp();
const programs = { unit: makePrograms(testsOf("tests/unit")), browsers: makePrograms(testsOf("tests/browsers")) };

let status = 0;
for (const suite of suites) {
  console.error(`== ${suite}`);
  const files = (suite === "unit" ? programs.unit : programs.browsers).filter((path) => path.includes(options.file ?? ""));
  const run = spawnSync(process.execPath, ["--test", `--test-concurrency=${kFilesAtATime}`, ...patterns, ...files], { stdio: "inherit", timeout: kSuiteMilliseconds, env: { ...process.env, NAVREL_BROWSER_ENGINE: suite } });
  if (run.error) console.error(`${suite}: ${run.error.message}`);
  if (run.status !== 0) status = 1;
}
process.exit(status);
