// Requests are served one after another: a step back must not overtake the jump that it takes back.

/** What takes the editor longer may never end, and must not keep what comes behind it from its turn. */
const longestTurnMilliseconds = 2000;

export class Turns {
  private last: Promise<unknown> = Promise.resolve();

  /** Runs a job after those before it. Rejects where the job does, or where it takes too long. */
  take(job: () => Promise<void>): Promise<void> {
    const turn = this.last.then(() => withinLimit(job()));
    this.last = turn.catch(() => undefined);
    return turn;
  }
}

async function withinLimit(work: Promise<void>): Promise<void> {
  let timer: NodeJS.Timeout | undefined;
  const limit = new Promise<never>((_, reject) => {
    timer = setTimeout(() => {
      reject(new Error("it has not finished what it was asked for"));
    }, longestTurnMilliseconds);
  });
  try {
    await Promise.race([work, limit]);
  } finally {
    clearTimeout(timer);
  }
}
