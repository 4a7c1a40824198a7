// A fault for the lint to find: nobody waits for the promise, so a failure of it is lost.
export function leave(save: () => Promise<void>): void {
  save();
}
