// node compare.mjs LANGUAGE CODEMAP_OUTLINE FOLDER... [--differences FILE]: see README.md.

import { spawnSync } from "node:child_process";
import { readdirSync, readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { extname, join } from "node:path";
import Parser from "web-tree-sitter";

const LARGEST_OUTPUT = 2 ** 30;

function parseArguments(words) {
    const given = { folders: [], differences: "differences.txt" };
    while (words.length > 0) {
        const word = words.shift();
        if (word === "--differences") {
            given.differences = words.shift();
        } else {
            given.folders.push(word);
        }
    }
    [given.language, given.program] = given.folders.splice(0, 2);
    return given;
}

function filesBelow(folder, extensions) {
    const files = [];
    for (const entry of readdirSync(folder, { withFileTypes: true })) {
        const path = join(folder, entry.name);
        if (entry.isDirectory()) {
            files.push(...filesBelow(path, extensions));
        } else if (entry.isFile() && extensions.includes(extname(path).slice(1))) {
            files.push(path);
        }
    }
    return files;
}

/** The declarations of each file as the program finds them. */
function outlinesOf(program, files) {
    const run = spawnSync(program, { input: files.join("\n") + "\n", maxBuffer: LARGEST_OUTPUT });
    if (run.status !== 0) {
        throw new Error(`${program} failed: ${run.stderr}`);
    }
    const outlines = new Map();
    for (const line of run.stdout.toString().trimEnd().split("\n")) {
        const outline = JSON.parse(line);
        outlines.set(outline.path, outline.symbols);
    }
    return outlines;
}

function keyOf({ kind, name, line }) {
    return `${kind}\t${name}\t${line}`;
}

class Table {
    kinds = new Map();

    of(kind) {
        if (!this.kinds.has(kind)) {
            this.kinds.set(kind, { theirs: 0, ours: 0, both: 0 });
        }
        return this.kinds.get(kind);
    }

    print() {
        const total = { theirs: 0, ours: 0, both: 0 };
        const row = (kind, { theirs, ours, both }) => {
            const percent = (of) => (of === 0 ? "–" : ((100 * both) / of).toFixed(2));
            console.log(`| ${kind} | ${theirs} | ${ours} | ${percent(ours)} | ${percent(theirs)} |`);
        };
        console.log("| kind | grammar | code map | precision % | recall % |\n|---|---|---|---|---|");
        for (const [kind, counts] of [...this.kinds].sort()) {
            row(kind, counts);
            for (const key of Object.keys(total)) {
                total[key] += counts[key];
            }
        }
        row("all", total);
    }
}

/** Counts what both have, and returns what one of them has alone. */
function compare(theirs, ours, table) {
    const left = new Map();
    for (const declaration of theirs) {
        ++table.of(declaration.kind).theirs;
        const key = keyOf(declaration);
        left.set(key, (left.get(key) ?? 0) + 1);
    }
    const differences = [];
    for (const declaration of ours) {
        ++table.of(declaration.kind).ours;
        const key = keyOf(declaration);
        if (left.get(key) > 0) {
            left.set(key, left.get(key) - 1);
            ++table.of(declaration.kind).both;
        } else {
            differences.push(`ours\t${key}`);
        }
    }
    for (const [key, count] of left) {
        differences.push(...Array(count).fill(`grammar\t${key}`));
    }
    return differences;
}

const given = parseArguments(process.argv.slice(2));
const language = await import(`./${given.language}.mjs`);
await Parser.init();
const grammars = createRequire(import.meta.url).resolve("tree-sitter-wasms/package.json");
const parser = new Parser();
parser.setLanguage(await Parser.Language.load(join(grammars, "..", "out", language.grammar)));

const files = given.folders.flatMap((folder) => filesBelow(folder, language.extensions));
const outlines = outlinesOf(given.program, files);
const table = new Table();
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
        const theirs = language.declarationsOf(tree.rootNode, extname(file) === ".h");
        const ours = outlines.get(file).filter(language.isCompared ?? (() => true));
        lines.push(...compare(theirs, ours, table).map((difference) => `${file}\t${difference}`));
    }
    tree.delete();
}
writeFileSync(given.differences, lines.map((line) => line + "\n").join(""));
console.log(`${read} files compared, ${unread} left out, ${lines.length} differences\n`);
table.print();
