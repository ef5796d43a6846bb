"""The page of `simulate --web` in a browser shows the receipts of a till, and the switches on the page take effect."""

import json

from harness import DEADLINE, main, start
from shop import ShopCase

RECEIPT = b"THE CORNER BAKERY\n\n2 Espresso        3.60\n1 Croissant       2.20\n\nTotal             5.80\n"

# The number of dark dots on the paper that hangs out of the printer.
INK = """[...document.querySelectorAll('.strip canvas')].reduce((sum, canvas) => {
  const copy = new OffscreenCanvas(canvas.width, canvas.height).getContext('2d', {willReadFrequently: true});
  copy.drawImage(canvas, 0, 0);
  const dots = copy.getImageData(0, 0, canvas.width, canvas.height).data;
  for (let i = 0; i < dots.length; i += 4) { sum += dots[i + 3] > 0 && dots[i] < 128 ? 1 : 0; }
  return sum;
}, 0)"""
FIGURE = "[...document.querySelectorAll('.figures dt')].find((name) => name.textContent === {0!r}).nextSibling.textContent"


class PrintingOnThePage(ShopCase):
    def test_a_job_waits_until_a_person_closes_the_cover_in_the_web_page(self):
        shop = self.shop("--set", "speed=50", "--set", "profile=escpos-80")
        page = self.shop_page(shop)
        page.until(f"{INK} === 0", "no paper hangs out")
        till = start("--json", "-d", shop.places[0], "-e", "escpos", "print", "--end-timeout", "60000",
                     self.file("receipt.txt", RECEIPT))
        self.addCleanup(till.kill)
        page.until(f"{INK} > 200", "paper appears")
        self.turn(page, "Cover open")
        self.condition(page, "Off line: cover open")
        printed = page.evaluate(FIGURE.format("Bytes printed"))
        self.assertIsNone(till.poll(), "the job waits")
        self.assertLess(int(printed), len(RECEIPT))
        self.turn(page, "Cover open")
        self.condition(page, "Ready")
        out, _ = till.communicate(timeout=DEADLINE)
        self.assertEqual((till.returncode, json.loads(out)["outcome"]), (0, "printed"))

    def test_the_web_page_of_a_receipt_shows_picture_text_and_command_names(self):
        shop = self.shop("--set", "profile=escpos-80")
        page = self.shop_page(shop)
        with shop.connect() as till:
            till.sendall(b"\x1b@\x1bE\1" + RECEIPT + b"\x1dy\x1dVA\0")
        page.until("document.querySelector('#receipts a')", "the receipt is listed")
        address = page.evaluate("document.querySelector('#receipts a').href")
        self.assertEqual(address, f"{shop.address}receipts/1")
        page.follow("document.querySelector('#receipts a')")
        for seen in (page, None):
            seen = seen or self.page(address)
            seen.until("document.querySelector('.commands tr')", "the commands are listed")
            self.assertEqual(seen.evaluate("document.title"), "Receipt 1")
            self.assertIn("1 Croissant       2.20", seen.evaluate("document.querySelector('pre').textContent"))
            seen.until("document.querySelector('.whole img').naturalWidth > 300", "the picture is shown")
            names = seen.evaluate("[...document.querySelectorAll('.commands th')].map((cell) => cell.textContent)")
            self.assertEqual([name for name in names if name != "text"][:2], ["ESC @", "ESC E"])
            self.assertIn("GS V", names)
            self.assertIn("1b 40", seen.evaluate("document.querySelector('.commands code').textContent"))

    def test_a_receipt_of_many_metres_is_shown_whole(self):
        shop = self.shop()
        with shop.connect() as till:
            till.sendall(b"many metres of paper\n" * 1400)
        page = self.shop_page(shop)
        page.until("document.querySelector('#receipts img')?.naturalWidth > 0", "its beginning is in the list")
        page.go(f"{shop.address}receipts/1")
        pieces = "[...document.querySelectorAll('.whole img')]"
        page.until(f"{pieces}[0]?.naturalHeight === 4000", "its beginning is shown")
        self.assertFalse(page.evaluate(f"{pieces}.at(-1).complete"), "the end is not loaded before it is wanted")
        page.evaluate("document.querySelector('.whole').scrollTop = 1e6")
        page.until(f"{pieces}.at(-1).naturalHeight > 0", "its end is shown")

    def test_the_page_of_a_missing_receipt_shows_an_alert(self):
        shop = self.shop()
        page = self.browser.page(f"{shop.address}receipts/99")
        self.addCleanup(page.close)
        page.until("document.querySelector('[role=alert]')?.textContent", "the page says so")

    def test_a_button_prints_a_test_receipt(self):
        page = self.shop_page(self.shop())
        self.press(page, "Print a test receipt")
        page.until("document.querySelectorAll('#receipts li').length === 1", "the receipt is listed")

    def test_a_button_tears_the_paper_off_without_animation_if_reduced_motion_is_set(self):
        for calm in (False, True):
            shop = self.shop()
            page = self.shop_page(shop, calm=calm)
            page.evaluate("""(() => {
                globalThis.seen = [];
                new MutationObserver((changes) => changes.forEach((change) => {
                  if (change.target.classList.contains('parting')) { globalThis.seen.push('parting'); }
                })).observe(document.querySelector('.machine'), {subtree: true, attributes: true, childList: true});
              })()""")
            with shop.connect() as till:
                till.sendall(RECEIPT)
                page.until(f"{INK} > 500", "the paper appears")
                self.press(page, "Tear off")
                page.until(f"{INK} === 0", "the paper is gone")
                page.until("document.querySelectorAll('#receipts li').length === 1", "the receipt is listed")
            self.assertEqual(page.evaluate("globalThis.seen.length > 0"), not calm)

    def test_text_from_a_printer_is_never_interpreted_as_markup(self):
        shop = self.shop()
        page = self.shop_page(shop)
        with shop.connect() as till:
            till.sendall(b"<img src=x onerror=document.title='caught'>\n")
        page.until("document.querySelector('#log')?.textContent.includes('<img src=x')", "the log shows it")
        page.until("document.querySelector('#receipts a')", "the receipt is listed")
        page.go(f"{shop.address}receipts/1")
        page.until("document.querySelector('pre')?.textContent.includes('<img src=x')", "the receipt shows it")
        self.assertEqual(page.evaluate("[document.title, document.querySelectorAll('img[src=x]').length]"), ["Receipt 1", 0])


class PageControls(ShopCase):
    def state(self, page, printer: int = 1) -> dict:
        """The state that the server reports for a printer."""
        return page.evaluate(f"""fetch('api/printers').then((answer) => answer.json())
            .then(({{printers}}) => printers.find((printer) => printer.id === {printer}))""")

    def test_each_printer_of_a_shop_has_its_own_switches(self):
        shop = self.shop(printers=("tcp:0,name=kitchen", "tcp:0,name=bar"))
        page = self.shop_page(shop)
        self.assertEqual(page.evaluate("[...document.querySelectorAll('.printer h2')].map((name) => name.textContent)"),
                         ["kitchen", "bar"])
        page.click("[...document.querySelectorAll('.printer')][1].querySelector('.switch input')")
        page.until("document.querySelectorAll('.printer .condition')[1].textContent === 'Off line: cover open'")
        self.assertEqual(page.evaluate("document.querySelector('.printer .condition').textContent"), "Ready")
        self.assertEqual([self.state(page, id)["state"]["coverOpen"] for id in (1, 2)], [False, True])

    def test_every_flag_and_setting_and_fault_of_the_server_has_a_control(self):
        page = self.shop_page(self.shop())
        forms = page.evaluate("fetch('api/forms').then((answer) => answer.json())")
        self.assertEqual(page.evaluate("document.querySelectorAll('.switches .switch input').length"), len(forms["flags"]))
        self.assertEqual(page.evaluate("document.querySelectorAll('.settings .fields > div').length"), len(forms["settings"]))
        self.assertEqual(page.evaluate("[...document.querySelectorAll('.faults select option')].map((one) => one.value)")
                         [:len(forms["faults"])], [fault["name"] for fault in forms["faults"]])
        buttons = page.evaluate("[...document.querySelectorAll('button')].map((button) => button.textContent)")
        self.assertLessEqual({action["label"].capitalize() for action in forms["actions"]}, set(buttons))

    def test_the_web_page_shows_conditions_that_a_json_control_line_sets(self):
        shop = self.shop()
        page = self.shop_page(shop)
        page.evaluate("""fetch('api/control', {method: 'POST', headers: {'Content-Type': 'application/json'},
            body: JSON.stringify({set: {receiptPaperEmpty: true, speed: 200}})})""")
        self.condition(page, "Off line: paper out")
        page.until("document.querySelector('.sliders output').textContent === '200 bytes a second'")

    def test_the_page_reports_a_refused_value_and_shows_the_old_value_again(self):
        page = self.shop_page(self.shop())
        page.evaluate("document.querySelector('.settings').open = true")
        field = "[...document.querySelectorAll('.settings label')].find((label) => /firmware/i.test(label.textContent)).control"
        page.evaluate(f"(() => {{ const input = {field}; input.value = 'ü'; input.dispatchEvent(new Event('change')); }})()")
        page.until("document.querySelector('[role=alert]').textContent.includes('firmware')", "the refusal is shown")
        page.until(f"{field}.value === 'Virtual 1.0'", "the old value is shown")

    def test_a_fault_with_parameters_can_be_added_and_cleared_on_the_page(self):
        page = self.shop_page(self.shop())
        page.evaluate("document.querySelector('.faults').open = true")
        page.evaluate("""(() => {
            const select = document.querySelector('.faults select');
            select.value = 'late-reply';
            select.dispatchEvent(new Event('change'));
          })()""")
        page.click("document.querySelector('.faults form input')")
        page.type("300")
        self.press(page, "Add the fault")
        page.until("document.querySelector('.faults li')?.textContent === 'late-reply=300'", "the fault is listed")
        self.assertEqual(self.state(page)["faults"], [{"name": "late-reply", "value": "300"}])
        self.press(page, "Clear all faults")
        page.until("document.querySelector('.faults li') === null", "no fault is listed")
        self.assertEqual(self.state(page)["faults"], [])

    def test_the_log_on_the_page_can_be_filtered_by_words_bytes_and_kind(self):
        shop = self.shop("--set", "profile=escpos-80")
        page = self.shop_page(shop)
        with shop.connect() as till:
            till.sendall(b"\x1b@Bread\n\x10\x04\x01")
            till.recv(1)
            page.until("document.querySelector('.entries .answer')", "the answer is logged")
        rows = "[...document.querySelectorAll('.entries li')].map((row) => row.textContent)"
        for wanted, held in (("1b 40", "ESC @"), ("bread", "Bread")):
            page.evaluate(f"document.querySelector('#log input[type=search]').value = {wanted!r}")
            page.evaluate("document.querySelector('#log input[type=search]').dispatchEvent(new Event('input'))")
            found = page.evaluate(rows)
            self.assertEqual(len(found), 1, found)
            self.assertIn(held, found[0])
        page.evaluate("document.querySelector('#log input[type=search]').value = ''")
        page.click("[...document.querySelectorAll('#log .choice')].find((label) => label.textContent === 'commands').control")
        self.assertEqual(page.evaluate("document.querySelectorAll('.entries .command').length"), 0)
        self.assertGreater(page.evaluate("document.querySelectorAll('.entries .answer').length"), 0)

    def test_the_page_shows_that_the_server_has_ended(self):
        shop = self.shop()
        page = self.browser.page(shop.address)
        self.addCleanup(page.close)
        page.until("document.querySelector('#link').textContent === 'live'")
        page.evaluate("document.querySelector('#foot details').open = true")
        self.press(page, "Quit")
        self.assertEqual(shop.process.wait(DEADLINE), 0)
        page.until("document.querySelector('#link').classList.contains('lost')", "the page says so")


if __name__ == "__main__":
    main()
