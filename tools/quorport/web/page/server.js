// Requests to the server of this page. Their addresses are relative, so each contains the token of the page's own
// address.

const retryMillis = 3000;

/** The forms of all settings, as the server lists them. */
export async function forms() {
  const answer = await fetch("api/forms");
  return answer.json();
}

/** The receipts that are older than the receipt `id`, the newest first. */
export async function receiptsBefore(id) {
  const answer = await fetch(`api/receipts?before=${id}`);
  return (await answer.json()).receipts;
}

/**
 * Sends a control line to one printer, or to all if `printer` is null. If the server refuses the line, throws an
 * Error with the server's text.
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
 * Calls the handler of each event with its data, and `onLink` with true or false when the connection opens or fails. If
 * the server has refused the connection, connects again.
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
