// Declarations of C, C++ and Objective-C in a syntax tree. Files are read by three grammars (c.mjs, cpp.mjs, objc.mjs), whose
// nodes have the same names where the languages are the same.

const TYPES = { struct_specifier: "struct", class_specifier: "class", union_specifier: "union", enum_specifier: "enum" };
const TRANSPARENT = new Set([
    "preproc_if", "preproc_ifdef", "preproc_else", "preproc_elif", "preproc_elifdef", "translation_unit", "declaration_list",
    "field_declaration_list", "enumerator_list", "template_declaration", "implementation_definition", "instance_variables",
    "instance_variable", "linkage_specification", "qualified_protocol_interface_declaration",
]);

function lineOf(node) {
    return node.startPosition.row + 1;
}

/** A name without white space, and without template arguments. */
function textOf(node) {
    if (node.type === "template_function" || node.type === "template_type" || node.type === "template_method") {
        return textOf(node.childForFieldName("name"));
    }
    if (node.type === "qualified_identifier") {
        const scope = node.childForFieldName("scope");
        const name = node.childForFieldName("name");
        if (name.type === "pointer_type_declarator" && !name.text.includes("(")) {
            return name.text.replace(/^.*\*\s*/, ""); // "int A::*b"
        }
        return (scope ? textOf(scope) + "::" : "") + textOf(name);
    }
    const text = node.text.replaceAll(/\s+/g, " ");
    if (node.type === "operator_cast") {
        return conversionOf(text);
    }
    return text.startsWith("operator") ? text.replace(/^operator (?=\W)/, "operator").replace(/"" /, '""') : text.replaceAll(" ", "");
}

/** "operator const char*" of "operator const char *() const". */
function conversionOf(text) {
    return text.replace(/ ?\([^()]*\)[^()]*$/, "").replaceAll(/ ?([*&]+) ?/g, "$1");
}

function isOperator(name) {
    return /(^|::)operator\b/.test(name);
}

/** The name that a declarator is about, and whether a function is declared. */
function readDeclarator(node) {
    let isFunction = false;
    while (node) {
        switch (node.type) {
            case "identifier":
            case "field_identifier":
            case "type_identifier":
            case "qualified_identifier":
            case "destructor_name":
            case "operator_name":
            case "template_function":
            case "template_method":
            case "primitive_type":
                return { node, name: textOf(node), isFunction };
            case "operator_cast": {
                return { node, name: textOf(node), isFunction: true };
            }
            case "function_declarator":
                isFunction = true;
                break;
            case "pointer_declarator":
            case "block_pointer_declarator":
            case "reference_declarator":
                // "(*f)(int)" is a variable; "*f(int)" is not.
                isFunction = false;
                break;
            default:
                break;
        }
        node = node.childForFieldName("declarator") ?? node.namedChildren.find((one) => /declarator|identifier|_name$|operator_cast/.test(one.type));
    }
    return undefined;
}

function declaratorsOf(node) {
    const named = node.childrenForFieldName?.("declarator") ?? [];
    if (named.length > 0) {
        return named;
    }
    const type = node.childForFieldName("type");
    const found = [];
    let isValue = false;
    for (let i = 0; i < node.childCount; ++i) {
        const one = node.child(i);
        isValue = one.type === "=" || (isValue && one.type !== ",");
        if (isValue) {
            continue;
        }
        if (type && one.id === type.id) {
            continue;
        }
        if (/declarator$|^operator_cast$|^qualified_identifier$/.test(one.type) || (i > 0 && /identifier$/.test(one.type) && (one.type !== "type_identifier" || node.type === "type_definition"))) {
            found.push(one);
        }
    }
    return found;
}

/** "template <> void A::f<int>();" */
function isSpecialization(declarator) {
    const declaration = declarator.parent?.type === "declaration" ? declarator.parent : declarator.parent?.parent;
    return declaration?.parent?.type === "template_declaration";
}

class Reader {
    constructor(isHeader) {
        this.isHeader = isHeader;
        this.found = [];
        this.classes = []; // around the place that is read
    }

    add(kind, name, node) {
        this.found.push({ kind, name, line: lineOf(node) });
    }

    readAll(node, place) {
        for (const one of node.namedChildren) {
            this.read(one, place);
        }
    }

    read(node, place) {
        if (TRANSPARENT.has(node.type)) {
            this.readAll(node, place);
            return;
        }
        switch (node.type) {
            case "preproc_def":
            case "preproc_function_def":
                this.add("macro", node.childForFieldName("name").text, node.childForFieldName("name"));
                return;
            case "namespace_definition":
                this.readNamespace(node, place);
                return;
            case "function_definition":
            case "inline_method_definition":
                this.readType(node.childForFieldName("type"), place);
                this.readFunction(node.childForFieldName("declarator"), place, true);
                return;
            case "declaration":
            case "field_declaration":
            case "struct_declaration":
                this.readDeclaration(node, place);
                return;
            case "type_definition":
                this.readTypeDefinition(node, place);
                return;
            case "alias_declaration":
            case "concept_definition":
                this.add("typealias", node.childForFieldName("name").text, node.childForFieldName("name"));
                return;
            case "enumerator":
                this.add("case", node.childForFieldName("name").text, node.childForFieldName("name"));
                return;
            case "friend_declaration":
                this.readAll({ namedChildren: node.namedChildren.filter((one) => one.type === "function_definition") }, "file");
                return;
            default:
                if (node.type in TYPES) {
                    this.readType(node, place);
                } else {
                    this.readObjectiveC(node);
                }
        }
    }

    readNamespace(node, place) {
        const name = node.childForFieldName("name");
        if (name) {
            this.add("namespace", name.text.replaceAll(/\s/g, ""), name);
        }
        this.readAll(node.childForFieldName("body"), place);
    }

    /** A type with a body; what stands behind the body is `names`. */
    readType(node, place, names = [], isTypeDefinition = false) {
        const body = node && node.type in TYPES ? (node.childForFieldName("body") ?? node.namedChildren.find((one) => /_list$/.test(one.type) && one.text.startsWith("{"))) : undefined;
        if (!body) {
            return false;
        }
        const kind = TYPES[node.type];
        const name = node.childForFieldName("name");
        let taken = false;
        if (name) {
            this.add(kind, textOf(name), name);
            taken = isTypeDefinition && names[0]?.name === textOf(name);
        } else if (names.length > 0) {
            const isPointer = names[0].isPointer;
            const shown = isTypeDefinition ? (isPointer ? "typedef" : kind) : place === "type" ? "field" : "variable";
            this.add(shown, names[0].name, node);
            taken = true;
        }
        this.classes.push(name ? textOf(name) : "");
        this.readAll(body, kind === "enum" ? place : "type");
        this.classes.pop();
        return taken;
    }

    readTypeDefinition(node, place) {
        const names = declaratorsOf(node).map((one) => ({ ...readDeclarator(one), isPointer: one.type === "pointer_declarator" })).filter((one) => one.node);
        const taken = this.readType(node.childForFieldName("type") ?? node.namedChildren[0], place, names, true);
        for (const one of taken ? names.slice(1) : names) {
            this.add("typedef", one.name, one.node);
        }
    }

    readDeclaration(node, place) {
        const type = node.childForFieldName("type") ?? node.namedChildren.find((one) => one.type in TYPES);
        const declarators = declaratorsOf(node);
        const names = declarators.map((one) => readDeclarator(one)).filter((one) => one);
        const taken = this.readType(type, place, names);
        const isExternal = node.parent?.type === "linkage_specification" || node.namedChildren.some((one) => one.type === "storage_class_specifier" && one.text === "extern");
        declarators.forEach((declarator, index) => {
            if (declarator.type === "init_declarator" && declarator.namedChildren[0].type === "structured_binding_declarator") {
                declarator.namedChildren[0].namedChildren.filter((name) => name.type === "identifier").forEach((name) => this.add("variable", name.text, name));
                return;
            }
            const one = readDeclarator(declarator);
            if (!one || (taken && index === 0)) {
                return;
            }
            if (one.isFunction) {
                const hasBody = declarator.type === "init_declarator" && declarator.childForFieldName("value")?.type === "initializer_list"; // "void f() {};"
                this.readFunction(declarator, place, hasBody, /=\s*(default|delete)\s*;$/.test(node.text));
            } else if (!isExternal || this.isHeader || declarator.type === "init_declarator") {
                this.add(place === "type" ? "field" : "variable", one.name, one.node);
            }
        });
    }

    readFunction(declarator, place, hasBody, isDefaulted = false) {
        const one = readDeclarator(declarator);
        const isQualified = one?.node.type === "qualified_identifier";
        const isShown = hasBody || place === "type" || (isQualified ? isDefaulted || (this.isHeader && isSpecialization(declarator)) : this.isHeader);
        if (!one || !isShown) {
            return;
        }
        const isCall = hasBody && one.name !== this.classes.at(-1) && !declarator.parent.childForFieldName("type") && /^[A-Z_0-9]{2,}$/.test(one.name);
        if (isCall) {
            const call = declarator.text.replaceAll(/\s+/g, " ");
            this.add(place === "type" ? "method" : "function", call, one.node); // a macro with a body
            return;
        }
        const kind = isOperator(one.name) ? "operator" : place === "type" || isQualified ? "method" : "function";
        this.add(kind, one.name, one.node);
    }

    readObjectiveC(node) {
        const name = node.namedChildren.find((one) => one.type === "identifier");
        switch (node.type) {
            case "class_interface":
            case "class_implementation": {
                const category = node.childForFieldName("category");
                const isCategory = category || node.children.some((one) => one.type === "(");
                const kind = node.type === "class_implementation" ? "implementation" : isCategory ? "category" : "class";
                this.add(kind, name.text + (isCategory ? ` (${category?.text ?? ""})` : ""), name);
                this.readMembers(node);
                return;
            }
            case "protocol_declaration":
                this.add("protocol", name.text, name);
                this.readMembers(node);
                return;
            case "property_declaration":
                for (const part of node.namedChildren.filter((one) => one.type === "struct_declaration")) {
                    for (const declarator of part.namedChildren.filter((one) => one.type === "struct_declarator")) {
                        const one = readDeclarator(declarator);
                        if (one) {
                            this.add("property", one.name, one.node);
                        }
                    }
                }
                return;
            case "method_declaration":
                this.readMethod(node);
                return;
            case "method_definition":
                this.readMethod(node);
                return;
            default:
        }
    }

    readMembers(node) {
        for (const one of node.namedChildren) {
            this.read(one, one.type === "instance_variables" ? "type" : "file");
        }
    }

    readMethod(node) {
        let selector = "";
        let first;
        const parts = node.namedChildren;
        for (const [index, one] of parts.entries()) {
            const isPart = parts[index + 1]?.type === "method_parameter";
            if (one.type === "identifier" && first && !isPart) {
                break; // a macro for an attribute
            }
            if (one.type === "identifier") {
                first ??= one;
                selector += one.text;
            } else if (one.type === "method_parameter") {
                first ??= one;
                selector += ":";
            }
        }
        if (first) {
            this.add("method", node.text[0] + selector, first);
        }
    }
}

/** Whether a header is one of C++. */
export function isCppHeader(text) {
    return /^\s*(namespace\b|class\s+\w|template\s*<|public:|private:|using\s)|std::/m.test(text);
}

export function declarationsOf(root, isHeader) {
    const reader = new Reader(isHeader);
    reader.readAll(root, "file");
    return reader.found;
}
