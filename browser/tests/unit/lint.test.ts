// The lint finds faults that were planted for it: a check that cannot fail would show nothing.
import assert from "node:assert/strict";
import { test } from "node:test";
import { ESLint } from "eslint";

const kFaults = {
  "lostPromise.ts": "@typescript-eslint/no-floating-promises",
  "needlessCondition.tsx": "@typescript-eslint/no-unnecessary-condition",
};

const eslint = new ESLint();
for (const [file, rule] of Object.entries(kFaults)) {
  test(`the lint finds the fault in ${file}`, async () => {
    const [result] = await eslint.lintFiles(`tests/faults/${file}`);
    assert.deepEqual(
      result?.messages.map((message) => message.ruleId),
      [rule],
    );
  });
}
