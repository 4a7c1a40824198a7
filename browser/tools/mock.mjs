// `npm run mock`: the page with a server of its own that plays Navrel, to work on its looks.
import { runProgram } from "./programs.mjs";

runProgram("tests/mock/main.ts", []);
