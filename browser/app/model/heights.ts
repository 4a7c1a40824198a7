// The heights of a long list's rows: guessed until a row has been on the screen, measured from then on.

export class Heights {
  private readonly heights: Float64Array;
  /** `tops[i]` is where row i begins; one more for the end. Made again when something was measured. */
  private tops: Float64Array | undefined;

  constructor(
    readonly count: number,
    private guess: number,
  ) {
    this.heights = new Float64Array(count).fill(guess);
  }

  /** Takes another height for all rows; must come before any is measured. Whether it is another one. */
  guessAgain(guess: number): boolean {
    if (guess === this.guess) return false;
    this.guess = guess;
    this.heights.fill(guess);
    this.tops = undefined;
    return true;
  }

  /** Notes the height of one of the rows; the answer is by how much it differs from what was taken for it. */
  measure(row: number, height: number): number {
    const before = this.heights[row]!;
    if (before === height) return 0;
    this.heights[row] = height;
    this.tops = undefined;
    return height - before;
  }

  top(row: number): number {
    return this.all()[Math.min(Math.max(row, 0), this.count)]!;
  }

  get total(): number {
    return this.top(this.count);
  }

  /** The row at a distance from the top; the first or the last one outside. */
  rowAt(offset: number): number {
    const tops = this.all();
    let low = 0;
    let high = Math.max(this.count - 1, 0);
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (tops[middle]! <= offset) low = middle;
      else high = middle - 1;
    }
    return low;
  }

  private all(): Float64Array {
    if (this.tops) return this.tops;
    const tops = new Float64Array(this.count + 1);
    for (let row = 0; row < this.count; row++) tops[row + 1] = tops[row]! + this.heights[row]!;
    return (this.tops = tops);
  }
}
