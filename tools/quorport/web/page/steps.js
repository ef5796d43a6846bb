// The steps of a slider, for ranges that are too wide for a step at each number.

/** The numbers 10, 20, 50, 100 … that are between `min` and `max`. */
export function decimalSteps(min, max) {
  const found = [];
  for (let power = 1; power <= max; power *= 10) {
    found.push(...[power, 2 * power, 5 * power].filter((number) => number >= min && number <= max));
  }
  return found;
}

/** The powers of two from `min` to `max`. */
export function binarySteps(min, max) {
  const found = [];
  for (let power = 1; power <= max; power *= 2) {
    if (power >= min) {
      found.push(power);
    }
  }
  return found;
}

/** The index of the step nearest to the number, measured by the ratio of the two. */
export function nearest(steps, number) {
  const distance = (step) => Math.abs(Math.log(Math.max(step, 0.5) / Math.max(number, 0.5)));
  return steps.reduce((best, step, index) => (distance(step) < distance(steps[best]) ? index : best), 0);
}
