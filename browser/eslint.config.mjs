// Finds what the type check passes: promises that nobody waits for, conditions that are always true.

import eslint from "@eslint/js";
import { defineConfig, globalIgnores } from "eslint/config";
import typescript from "typescript-eslint";

export default defineConfig([
  globalIgnores(["app/wire/shapes.ts"]), // made from the schema
  {
    files: ["**/*.ts", "**/*.tsx"],
    extends: [eslint.configs.recommended, typescript.configs.strictTypeChecked],
    languageOptions: { parserOptions: { projectService: true, tsconfigRootDir: import.meta.dirname } },
    rules: {
      // "return say(…)" says it, and ends the function.
      "@typescript-eslint/no-confusing-void-expression": "off",
      // Node's runner waits for its tests.
      "@typescript-eslint/no-floating-promises": ["error", { allowForKnownSafeCalls: [{ from: "package", package: "node:test", name: "test" }] }],
      // A reducer without an action has one of the type void.
      "@typescript-eslint/no-invalid-void-type": "off",
      // An index is checked before, or comes from the array itself.
      "@typescript-eslint/no-non-null-assertion": "off",
      "@typescript-eslint/no-unused-vars": ["error", { argsIgnorePattern: "^_", varsIgnorePattern: "^_" }],
      // What an interface wants as a promise may be there at once.
      "@typescript-eslint/require-await": "off",
      "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
    },
  },
]);
