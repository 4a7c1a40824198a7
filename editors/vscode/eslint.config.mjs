// Finds what the type check passes: promises that nobody waits for, conditions that are always true.

import eslint from "@eslint/js";
import { defineConfig } from "eslint/config";
import typescript from "typescript-eslint";

export default defineConfig({
  files: ["**/*.ts"],
  extends: [eslint.configs.recommended, typescript.configs.strictTypeChecked],
  languageOptions: { parserOptions: { projectService: true, tsconfigRootDir: import.meta.dirname } },
  rules: {
    "@typescript-eslint/no-confusing-void-expression": ["error", { ignoreArrowShorthand: true }],
    // Columns count code points: a text is spread to count them.
    "@typescript-eslint/no-misused-spread": "off",
    "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
  },
});
