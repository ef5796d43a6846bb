"""A page of another origin can neither read nor control a printer, even if it knows the address."""

import http.server
import threading

from harness import main
from shop import Shop, ShopCase

# The attempts of a page of another origin; each returns the answer that it got. `shop` is the address of the shop's own
# page, with the secret token.
ATTEMPTS = {
    "reads": "fetch(shop + 'api/printers').then((answer) => answer.text())",
    "reads without asking": "fetch(shop + 'api/printers', {mode: 'no-cors'}).then((answer) => answer.text())",
    "follows the events": """new Promise((resolve) => {
        const source = new EventSource(shop + 'api/events');
        source.addEventListener('snapshot', (event) => resolve(event.data));
        source.addEventListener('error', () => resolve(''));
      })""",
    "looks at a picture": """new Promise((resolve) => {
        const image = new Image();
        image.onload = () => resolve('seen');
        image.onerror = () => resolve('');
        image.src = shop + 'receipts/1.png';
      })""",
    "runs a script": """new Promise((resolve) => {
        const script = document.createElement('script');
        script.onload = () => resolve('run');
        script.onerror = () => resolve('');
        script.src = shop + 'page/words.js';
        document.head.append(script);
      })""",
    "shows the page in a frame": """new Promise((resolve) => {
        const frame = document.createElement('iframe');
        frame.onload = () => { try { resolve(frame.contentDocument.title); } catch { resolve(''); } };
        frame.src = shop;
        document.body.append(frame);
      })""",
    "switches": """fetch(shop + 'api/control', {method: 'POST', body: '{"set": {"coverOpen": true}}',
        headers: {'Content-Type': 'application/json'}}).then((answer) => answer.text())""",
    "switches without asking": """fetch(shop + 'api/control', {method: 'POST', mode: 'no-cors',
        body: '{"set": {"coverOpen": true}}'}).then((answer) => answer.text())""",
    "switches by a beacon": """Promise.resolve(navigator.sendBeacon(shop + 'api/control',
        new Blob(['{"set": {"coverOpen": true}}'], {type: 'text/plain'})) ? '' : '')""",
    "switches by a form": """new Promise((resolve) => {
        const target = document.createElement('iframe');
        target.name = 'answers';
        const form = document.createElement('form');
        Object.assign(form, {method: 'post', enctype: 'text/plain', target: 'answers', action: shop + 'api/control'});
        const field = document.createElement('input');
        Object.assign(field, {name: '{"set": {"coverOpen": true}, "x": "', value: '"}'});
        form.append(field);
        document.body.append(target, form);
        target.onload = () => { try { resolve(target.contentDocument.body.textContent); } catch { resolve(''); } };
        form.submit();
      })""",
}


class Elsewhere(http.server.BaseHTTPRequestHandler):
    """A server of another origin. Its page looks harmless."""

    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.end_headers()
        self.wfile.write(b"<!doctype html><title>elsewhere</title><link rel=icon href=data:,><body>")

    def log_message(self, *_):
        pass


class OtherOrigin(ShopCase):
    def elsewhere(self) -> str:
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Elsewhere)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}/"

    def attempt(self, page, shop: Shop, script: str) -> str:
        return page.evaluate(f"""(async (shop) => {{
            try {{ return String(await {script}); }} catch {{ return ''; }}
          }})({shop.address!r})""")

    def test_a_page_of_another_origin_can_neither_read_nor_change_anything(self):
        shop = self.shop()
        own = self.shop_page(shop)
        own.evaluate("document.title = 'the shop'")
        page = self.browser.page(self.elsewhere())
        self.addCleanup(page.close)
        for name, script in ATTEMPTS.items():
            with self.subTest(name):
                self.assertEqual(self.attempt(page, shop, script), "")
        state = own.evaluate("fetch('api/printers').then((answer) => answer.json()).then((all) => all.printers[0].state.coverOpen)")
        self.assertIs(state, False)

    def test_a_page_of_the_own_origin_can_read_and_change_the_printer(self):
        """On the shop's own page, three of the ATTEMPTS succeed. So on another page, only its origin makes them fail."""
        shop = self.shop()
        own = self.shop_page(shop)
        for name in ("reads", "follows the events", "switches"):
            with self.subTest(name):
                self.assertNotEqual(self.attempt(own, shop, ATTEMPTS[name]), "")
        self.condition(own, "Off line: cover open")


if __name__ == "__main__":
    main()
