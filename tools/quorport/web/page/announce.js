// Announcements for screen readers, at most one each second: the latest.

const pauseMillis = 1000;
let latest = "";
let timer = null;

function speak() {
  document.getElementById("announcer").textContent = latest;
  timer = null;
}

/** Announces a sentence soon. A later sentence within the same second replaces it. */
export function announce(text) {
  latest = text;
  timer ??= setTimeout(speak, pauseMillis);
}
