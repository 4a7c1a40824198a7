// Swift declarations in a syntax tree.

export const grammar = "tree-sitter-swift.wasm";
export const extensions = ["swift"];

const BODIES = new Set(["class_body", "enum_class_body", "protocol_body"]);
const TYPE_WORDS = new Set(["class", "struct", "enum", "actor", "extension"]);
const NAMES = new Set(["simple_identifier", "type_identifier"]);

function withoutBackticks(text) {
    return text.replaceAll("`", "");
}

function lineOf(node) {
    return node.startPosition.row + 1;
}

function child(node, ...types) {
    return node.children.find((one) => types.includes(one.type));
}

function labelsOf(node, namesAreLabels) {
    const labels = node.children
        .filter((one) => one.type === "parameter")
        .map((parameter) => {
            const names = parameter.children.filter((one) => NAMES.has(one.type));
            const label = namesAreLabels || names.length > 1 ? withoutBackticks(names[0].text) : "_";
            return label + ":";
        });
    return `(${labels.join("")})`;
}

function typeOf(node) {
    const word = node.children.find((one) => TYPE_WORDS.has(one.type));
    const name =
        child(node, "type_identifier", "user_type", "array_type", "dictionary_type") ??
        node.children[node.children.indexOf(word) + 1];
    const isExtension = word.type === "extension";
    const text = isExtension ? name.text.replaceAll(/<.*>/gs, "") : name.text;
    return { kind: word.type, name: withoutBackticks(text), line: lineOf(name) };
}

function functionOf(node, isMember) {
    const name = child(node, "simple_identifier");
    if (name) {
        const text = withoutBackticks(name.text) + labelsOf(node, true);
        return { kind: isMember ? "method" : "function", name: text, line: lineOf(name) };
    }
    const sign = node.children[node.children.findIndex((one) => one.type === "func") + 1];
    return { kind: "operator", name: sign.text, line: lineOf(sign) };
}

function namesOfPattern(pattern) {
    const names = pattern.children.filter((one) => one.type === "simple_identifier");
    for (const inner of pattern.children.filter((one) => one.type === "pattern")) {
        names.push(...namesOfPattern(inner));
    }
    return names;
}

function variablesOf(node, isMember) {
    return node.children
        .filter((one) => one.type === "pattern")
        .flatMap(namesOfPattern)
        .filter((name) => name.text !== "_")
        .map((name) => ({
            kind: isMember ? "property" : "variable",
            name: withoutBackticks(name.text),
            line: lineOf(name),
        }));
}

function casesOf(node) {
    // What follows "=" is a value.
    return node.children
        .filter((one, index) => one.type === "simple_identifier" && node.children[index - 1]?.type !== "=")
        .map((name) => ({ kind: "case", name: withoutBackticks(name.text), line: lineOf(name) }));
}

function named(kind, node, ...types) {
    const name = child(node, ...types);
    return { kind, name: withoutBackticks(name.text), line: lineOf(name) };
}

function wordLine(node, word) {
    return lineOf(child(node, word) ?? node);
}

function declarationsOfNode(node, isMember) {
    switch (node.type) {
        case "class_declaration":
            return [typeOf(node)];
        case "protocol_declaration":
            return [named("protocol", node, "type_identifier")];
        case "function_declaration":
        case "protocol_function_declaration":
            return [functionOf(node, isMember)];
        case "init_declaration":
            return [{ kind: "init", name: "init" + labelsOf(node, true), line: wordLine(node, "init") }];
        case "deinit_declaration":
            return [{ kind: "deinit", name: "deinit", line: wordLine(node, "deinit") }];
        case "subscript_declaration":
            return [
                { kind: "subscript", name: "subscript" + labelsOf(node, false), line: wordLine(node, "subscript") },
            ];
        case "property_declaration":
        case "protocol_property_declaration":
            return variablesOf(node, isMember);
        case "typealias_declaration":
            return [named("typealias", node, "type_identifier", "simple_identifier")];
        case "associatedtype_declaration":
            return [named("associatedtype", node, "type_identifier")];
        case "operator_declaration": {
            const sign = node.children[node.children.findIndex((one) => one.type === "operator") + 1];
            return [{ kind: "operator", name: sign.text, line: lineOf(sign) }];
        }
        case "enum_entry":
            return casesOf(node);
        case "macro_declaration": {
            const name = child(node, "simple_identifier");
            return [{ kind: "macro", name: name.text + labelsOf(node, true), line: lineOf(name) }];
        }
        default:
            return [];
    }
}

export function declarationsOf(root) {
    const declarations = [];
    const open = root.children.map((node) => ({ node, isMember: false })).reverse();
    while (open.length > 0) {
        const { node, isMember } = open.pop();
        declarations.push(...declarationsOfNode(node, isMember));
        const body = node.children.find((one) => BODIES.has(one.type));
        if (body) {
            open.push(...body.children.map((one) => ({ node: one, isMember: true })).reverse());
        }
    }
    return declarations;
}
