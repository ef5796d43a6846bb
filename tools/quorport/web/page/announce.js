// Words for assistive technology, used sparingly: the latest of what happens in a second.

const pauseMillis = 1000;
let latest = "";
let timer = null;

function speak() {
  document.getElementById("announcer").textContent = latest;
  timer = null;
}

/** Says a sentence, soon. A later one within the same second takes its place. */
export function announce(text) {
  latest = text;
  timer ??= setTimeout(speak, pauseMillis);
}
