// `npm run mock`: the page with a server of its own that plays Navrel, to work on its looks.
import { execFileSync, spawnSync } from "node:child_process";
import { fileURLToPath } from "node:url";

process.chdir(fileURLToPath(new URL("..", import.meta.url)));
execFileSync(process.execPath, ["tools/bundle.mjs", "--out", "build/app"], { stdio: "inherit" });
execFileSync("esbuild", ["tests/mock/main.ts", "--bundle", "--platform=node", "--format=esm", "--outfile=build/mock.mjs", "--log-level=warning"], { stdio: "inherit" });
spawnSync(process.execPath, ["build/mock.mjs"], { stdio: "inherit" });
