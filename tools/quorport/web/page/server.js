// The ways to the server that served this page. Addresses are relative: the secret in the page's own address
// goes with each of them.

const retryMillis = 3000;

/** All that can be set, as the server lists it. */
export async function forms() {
  const answer = await fetch("api/forms");
  return answer.json();
}

/** The receipts before one, the newest first. */
export async function receiptsBefore(id) {
  const answer = await fetch(`api/receipts?before=${id}`);
  return (await answer.json()).receipts;
}

/**
 * Gives a control line to one printer, or to all if `printer` is null. Throws an Error with the server's words
 * if it is refused.
 */
export async function control(printer, line) {
  const path = printer === null ? "api/control" : `api/printers/${printer}/control`;
  const answer = await fetch(path, {
    method: "POST",
    headers: {"Content-Type": "application/json"},
    body: JSON.stringify(line),
  });
  const result = await answer.json();
  if (!result.ok) {
    throw new Error(result.error);
  }
  return result;
}

/**
 * Calls `handlers[name]` with the data of each event of that name, for as long as the page lives, and `onLink`
 * with whether the server is connected. The browser mends a lost connection by itself; if the server turned
 * it away, it is asked again.
 */
export function follow(handlers, onLink) {
  const source = new EventSource("api/events");
  source.addEventListener("open", () => onLink(true));
  source.addEventListener("error", () => {
    onLink(false);
    if (source.readyState === EventSource.CLOSED) {
      setTimeout(() => follow(handlers, onLink), retryMillis);
    }
  });
  for (const [name, handle] of Object.entries(handlers)) {
    source.addEventListener(name, (event) => handle(JSON.parse(event.data)));
  }
}
