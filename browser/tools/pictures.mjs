// `npm run pictures [-- FOLDER]`: takes a picture of every screen and state, and renews those of docs/images.
import { resolve } from "node:path";
import { fileURLToPath } from "node:url";
const out = resolve(process.argv[2] ?? "build/pictures");
const docs = fileURLToPath(new URL("../../docs/images", import.meta.url));
const { runProgram } = await import("./programs.mjs");
runProgram("tests/pictures/main.ts", [out, docs]);
