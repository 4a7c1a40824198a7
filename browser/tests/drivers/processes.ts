// Programs that a test starts and ends.
import type { ChildProcess } from "node:child_process";
import { within } from "./driver";

const kPatienceMilliseconds = 10_000;

/** Asks a program to end and waits for that. One that does not obey is killed, and an error. */
export async function end(process: ChildProcess, signal: NodeJS.Signals = "SIGTERM"): Promise<void> {
  if (!process.pid || process.exitCode !== null || process.signalCode !== null) return;
  const ended = new Promise((done) => process.once("exit", done));
  process.kill(signal);
  try {
    await within(kPatienceMilliseconds, `The end of ${process.spawnfile}`, ended);
  } catch (error) {
    process.kill("SIGKILL");
    throw error;
  }
}
