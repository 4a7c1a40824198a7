// What the comparisons share: their arguments, the program's outlines, and the table of both.

import { spawnSync } from "node:child_process";
import { readdirSync } from "node:fs";
import { extname, join } from "node:path";

const LARGEST_OUTPUT = 2 ** 30;

export function parseArguments(words) {
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

export function filesBelow(folder, extensions) {
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
export function outlinesOf(program, files) {
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

export class Table {
    kinds = new Map();

    /** `other` is who the code map is compared with. */
    constructor(other) {
        this.other = other;
    }

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
        console.log(`| kind | ${this.other} | code map | precision % | recall % |\n|---|---|---|---|---|`);
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
export function compare(theirs, ours, table) {
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
        differences.push(...Array(count).fill(`${table.other}\t${key}`));
    }
    return differences;
}
