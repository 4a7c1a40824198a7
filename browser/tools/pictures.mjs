// `npm run pictures [-- FOLDER]`: takes a picture of every screen and state.
import { resolve } from "node:path";
const out = resolve(process.argv[2] ?? "build/pictures");
const { runProgram } = await import("./programs.mjs");
runProgram("tests/pictures/main.ts", [out]);
