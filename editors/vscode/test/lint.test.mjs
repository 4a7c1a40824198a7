// The lint finds faults that were planted for it: a check that cannot fail would show nothing.

import assert from "node:assert/strict";
import { dirname } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { ESLint } from "eslint";

const folder = dirname(dirname(fileURLToPath(import.meta.url)));

const faults = {
  "lostPromise.ts": "@typescript-eslint/no-floating-promises",
  "needlessCondition.ts": "@typescript-eslint/no-unnecessary-condition",
};

for (const [file, rule] of Object.entries(faults)) {
  test(`the lint finds the fault in ${file}`, async () => {
    const [result] = await new ESLint({ cwd: folder }).lintFiles(`test/faults/${file}`);
    assert.deepEqual(result.messages.map((message) => message.ruleId), [rule]);
  });
}
