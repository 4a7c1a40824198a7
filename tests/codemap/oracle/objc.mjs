// Objective-C declarations in a syntax tree.

import { isCppHeader } from "./cfamily.mjs";

export { declarationsOf } from "./cfamily.mjs";
export const grammar = "tree-sitter-objc.wasm";
export const extensions = ["m", "h"];
export const isAbout = (text, file) => !file.endsWith(".h") || !isCppHeader(text);
