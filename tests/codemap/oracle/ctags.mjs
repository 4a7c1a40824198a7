// node ctags.mjs LANGUAGE CODEMAP_OUTLINE FOLDER... [--differences FILE]: see README.md.

import { spawnSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import { compare, filesBelow, outlinesOf, parseArguments, Table } from "./comparison.mjs";
import * as c from "./c.mjs";
import * as cpp from "./cpp.mjs";
import * as objc from "./objc.mjs";

const LARGEST_OUTPUT = 2 ** 30;

const C_KINDS = {
    class: "class",
    enum: "enum",
    enumerator: "case",
    externvar: "variable",
    function: "function",
    macro: "macro",
    member: "field",
    namespace: "namespace",
    prototype: "function",
    struct: "struct",
    typedef: "typedef",
    union: "union",
    variable: "variable",
};
const LANGUAGES = {
    c: { module: c, name: "C", kinds: C_KINDS },
    cpp: { module: cpp, name: "C++", kinds: C_KINDS },
    objc: {
        module: objc,
        name: "ObjectiveC",
        kinds: {
            category: "category",
            class: "method",
            function: "function",
            implementation: "implementation",
            interface: "class",
            method: "method",
            property: "property",
            protocol: "protocol",
        },
    },
};

/** A name as both have it: neither scope, nor blanks, nor the sign of a method; a category's alone. */
function plainName(name) {
    const isOperator = /(^|::)operator\b/.test(name);
    const plain = isOperator ? name.replace(/^.*?(?=operator\b)/, "") : name.replace(/^.*::/, "");
    if (isOperator) {
        return plain.replaceAll(/\s/g, "");
    }
    const own = plain.replace(/^[-+]/, "").replace(/^.* \((.*)\)$/, "$1").replaceAll(/\s/g, "");
    return own.replace(/\(.*/, ""); // TEST(a, b)
}

/** In C and C++, what the two have different words for counts alike. */
const ALIKE = { field: "variable", method: "function", operator: "function", typealias: "typedef" };

function plain(symbols, isObjectiveC) {
    const kinds = isObjectiveC ? {} : ALIKE;
    return symbols.map(({ kind, name, line }) => ({
        kind: kinds[kind] ?? kind,
        name: plainName(name),
        line: isObjectiveC ? 0 : line, // ctags gives the line of the brace
    }));
}

/** "a::b" is two namespaces for ctags. */
function separate(symbol) {
    const names = symbol.kind === "namespace" ? symbol.name.split("::") : [symbol.name];
    return names.map((name) => ({ ...symbol, name }));
}

/** ctags has a class or implementation beside each category. */
function isOfCategory(tag, tags) {
    return /interface|implementation/.test(tag.kind) &&
        tags.some((other) => other.kind === "category" && other.line === tag.line);
}

function tagsOf(files, { name, kinds }) {
    const run = spawnSync(
        "ctags",
        [`--language-force=${name}`, "--kinds-C++=+px", "--kinds-C=+px", "--fields=+nK", "--output-format=json", "-f", "-", "-L", "-"],
        { input: files.join("\n") + "\n", maxBuffer: LARGEST_OUTPUT },
    );
    if (run.status !== 0) {
        throw new Error(`ctags failed: ${run.error ?? run.stderr}`);
    }
    const tags = new Map(files.map((file) => [file, []]));
    const anonymous = new Map();
    for (const line of run.stdout.toString().trimEnd().split("\n")) {
        const tag = JSON.parse(line);
        const isNamed = !/^__anon/.test(tag.name);
        const isMember = /class|struct|union/.test(tag.scopeKind);
        const isDeclaration = tag.kind === "externvar" || (tag.kind === "prototype" && !isMember);
        const isHidden = isDeclaration && !/\.(h|hpp)$/.test(tag.path); // as the code map has it
        if (!isNamed) {
            anonymous.set(tag.name, tag);
        } else if (tag.kind in kinds && !isHidden) {
            tags.get(tag.path).push(tag);
        }
    }
    return new Map([...tags].map(([path, all]) => [path, all.flatMap((tag) => asOneType(tag, anonymous))]));
}

/** "typedef struct {…} A" and "typedef struct A {…} A" are one type, and a type and its name for ctags. */
function asOneType(tag, anonymous) {
    const [, kind, name] = /^(struct|enum|union):(.*)$/.exec(tag.typeref ?? "") ?? [];
    if (tag.kind !== "typedef" || !kind) {
        return [tag];
    }
    const body = anonymous.get(name);
    return body ? [{ ...tag, kind, line: body.line }] : name === tag.name ? [] : [tag];
}

/** ctags reads one branch of #if, and the code map all: such files say nothing of either. */
function hasAlternatives(text) {
    return /^\s*#\s*(else|elif)/m.test(text);
}

const given = parseArguments(process.argv.slice(2));
const language = LANGUAGES[given.language];
const files = given.folders
    .flatMap((folder) => filesBelow(folder, language.module.extensions))
    .filter((file) => {
        const text = readFileSync(file, "utf8");
        const isMixed = given.language === "cpp" && /^@(interface|protocol|implementation)\b/m.test(text);
        return !isMixed && !hasAlternatives(text) && (!language.module.isAbout || language.module.isAbout(text, file));
    });
const outlines = outlinesOf(given.program, files);
const tags = tagsOf(files, language);
const compared = new Set(Object.values(language.kinds));
const table = new Table("ctags");
const lines = [];
for (const file of files) {
    const tagged = tags.get(file);
    const theirs = tagged
        .filter((tag) => !isOfCategory(tag, tagged))
        .map((tag) => ({ ...tag, kind: language.kinds[tag.kind] }));
    const ours = outlines.get(file).flatMap(separate).map(({ kind, name, line }) => ({
        kind: kind === "implementation" && name.endsWith(")") ? "category" : kind,
        name,
        line,
    }));
    const [others, own] = [theirs, ours].map((all) => plain(all, given.language === "objc"));
    const differences = compare(others, own.filter((symbol) => compared.has(symbol.kind)), table);
    lines.push(...differences.map((difference) => `${file}\t${difference}`));
}
writeFileSync(given.differences, lines.map((line) => line + "\n").join(""));
console.log(`${files.length} files compared, ${lines.length} differences\n`);
table.print();
