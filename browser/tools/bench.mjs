// `npm run bench`: the page's figures beside their goals.
import { runProgram } from "./programs.mjs";

runProgram("tests/bench/main.ts", []);
