// The stops of a slider whose range is far too wide for a stop at each number.

/** 10, 20, 50, 100 … of the numbers from `min` to `max`. */
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

/** The index of the step that is nearest to the number by its ratio. */
export function nearest(steps, number) {
  const distance = (step) => Math.abs(Math.log(Math.max(step, 0.5) / Math.max(number, 0.5)));
  return steps.reduce((best, step, index) => (distance(step) < distance(steps[best]) ? index : best), 0);
}
