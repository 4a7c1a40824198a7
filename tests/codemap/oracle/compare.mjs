// node compare.mjs LANGUAGE CODEMAP_OUTLINE FOLDER... [--differences FILE]: see README.md.

import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { extname, join } from "node:path";
import Parser from "web-tree-sitter";
import { compare, filesBelow, outlinesOf, parseArguments, Table } from "./comparison.mjs";

const given = parseArguments(process.argv.slice(2));
const language = await import(`./${given.language}.mjs`);
await Parser.init();
const grammars = createRequire(import.meta.url).resolve("tree-sitter-wasms/package.json");
const parser = new Parser();
parser.setLanguage(await Parser.Language.load(join(grammars, "..", "out", language.grammar)));

const files = given.folders.flatMap((folder) => filesBelow(folder, language.extensions));
const outlines = outlinesOf(given.program, files);
const table = new Table("grammar");
const lines = [];
let read = 0;
let unread = 0;
for (const file of files) {
    const text = readFileSync(file, "utf8");
    if (language.isAbout && !language.isAbout(text, file)) {
        continue;
    }
    const tree = parser.parse(text);
    if (tree.rootNode.hasError()) {
        ++unread;
    } else {
        ++read;
        const theirs = language.declarationsOf(tree.rootNode, /^\.(h|hpp)$/.test(extname(file)));
        const ours = outlines.get(file).filter(language.isCompared ?? (() => true));
        lines.push(...compare(theirs, ours, table).map((difference) => `${file}\t${difference}`));
    }
    tree.delete();
}
writeFileSync(given.differences, lines.map((line) => line + "\n").join(""));
console.log(`${read} files compared, ${unread} left out, ${lines.length} differences\n`);
table.print();
