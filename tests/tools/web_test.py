"""`simulate --web`: how a browser shows the printers and controls them."""

import base64
import json
import struct
import zlib

from browser import BrowserCase
from harness import STATUS_REQUEST, Running, eventually, main, receive, run

CUT = b"\x1d\x56\x00"


def size_of(png: bytes) -> tuple[int, int]:
    assert png.startswith(b"\x89PNG\r\n\x1a\n"), png[:20]
    return struct.unpack(">II", png[16:24])


def rows_of(png: bytes) -> bytes:
    """The rows of a picture as they are in the file."""
    at, packed = 8, b""
    while at < len(png):
        length, kind = struct.unpack(">I4s", png[at:at + 8])
        packed += png[at + 8:at + 8 + length] if kind == b"IDAT" else b""
        at += length + 12
    return zlib.decompress(packed)


def print_job(simulator, data: bytes):
    with simulator.connect() as host:
        host.sendall(data)


class WebAddress(BrowserCase):
    def test_the_web_address_is_in_the_first_json_line(self):
        shop = Running("--json", "simulate", "--listen", "tcp:0", "--web", "0")
        self.addCleanup(shop.kill)
        first = json.loads(shop.line())
        self.assertRegex(first["web"], r"^http://127\.0\.0\.1:\d+/[0-9a-f]{32}/$")

    def test_the_web_address_is_different_each_time(self):
        self.assertNotEqual(self.open()[1].prefix, self.open()[1].prefix)

    def test_an_invalid_web_address_is_a_usage_error(self):
        for text in ("", "eighty", "127.0.0.1:65536"):
            self.assertFailsInBothForms(2, "simulate", "--listen", "tcp:0", "--web", text, saying="--web takes")

    def test_a_web_address_that_is_in_use_is_refused(self):
        _, browser = self.open()
        self.assertFailsInBothForms(1, "simulate", "--listen", "tcp:0", "--web", str(browser.port), saying="listen")

    def test_the_web_address_serves_the_page_and_its_files(self):
        _, browser = self.open()
        page = browser.ask("")
        self.assertEqual((page.status, page.headers["Content-Type"]), (200, "text/html; charset=utf-8"))
        script = browser.ask("page/main.js")
        self.assertEqual((script.status, script.headers["Content-Type"]), (200, "text/javascript; charset=utf-8"))
        self.assertEqual(browser.ask("receipts/1").headers["Content-Type"], "text/html; charset=utf-8")
        for path in ("page/", "page/none.js", "page/../../etc/passwd", "receipts/1.png", "receipts/x", "api", "api/printers/1"):
            self.assertEqual(browser.ask(path).status, 404, path)
        self.assertEqual(browser.ask("", method="HEAD").content, b"")


class ControlLines(BrowserCase):
    def test_a_json_control_line_gets_the_same_answer_over_web_and_standard_input(self):
        simulator, browser = self.open()
        lines = [b'{"set": {"coverOpen": true, "speed": 300}}', b'{"get": "state"}', b'{"get": "settings"}',
                 b'{"get": "counters"}', b'{"fault": {"late-reply": "30@block"}}', b'{"get": "faults"}', b'{"clear": "faults"}',
                 b'{"get": "faults"}', b'{"set": {"nonsense": 1}}', b'{"get": "weather"}', b"no JSON", b"[]", b"",
                 b'{"tear": "paper"}', b'{"tear": "up"}', b'{"print": "money"}', b'{"printer": "bar", "get": "state"}']
        for line in lines:
            self.assertEqual(browser.control(line), simulator.raw_control(line + b"\n"), line)
            self.assertEqual(browser.control(line, printer=1), simulator.raw_control(line + b"\n"), line)

    def test_a_printer_without_a_name_is_controlled_by_its_number(self):
        simulator, browser = self.open("--listen", "tcp:0")
        self.assertEqual(browser.control({"set": {"coverOpen": True}}, printer=2), {"ok": True})
        self.assertFalse(simulator.state()["coverOpen"])
        first, second = browser.json("api/printers")["printers"]
        self.assertEqual((first["state"]["coverOpen"], second["state"]["coverOpen"]), (False, True))
        answer = browser.ask("api/printers/3/control", "POST", b"{}", Content_Type="application/json")
        self.assertEqual(answer.status, 404)

    def test_a_control_line_can_end_simulate(self):
        simulator, browser = self.open()
        self.assertEqual(browser.control({"quit": True}), {"ok": True})
        self.assertEqual(simulator.process.wait(30), 0)

    def test_a_control_line_can_tear_the_paper_off(self):
        simulator, browser = self.open()
        events = self.events(browser)
        with simulator.connect() as host:
            host.sendall(b"half\n" + STATUS_REQUEST)
            receive(host, 9)
            self.assertEqual(simulator.control({"tear": "paper"}), {"ok": True})
            events.all_of("torn", "receipt")
            self.assertEqual(browser.ask("receipts/1.txt").content, b"half\n")
            host.sendall(b"rest\n")
        self.assertEqual(events.next("receipt")["id"], 2)
        self.assertEqual(browser.ask("receipts/2.txt").content, b"rest\n")

    def test_a_control_line_prints_a_test_receipt_between_the_jobs_of_a_host(self):
        simulator, browser = self.open("--set", "profile=escpos-58")
        events = self.events(browser)
        self.assertEqual(browser.control({"print": "test"}), {"ok": True})
        events.next("receipt")
        with simulator.connect() as host:
            host.sendall(b"mine\n\x10\x04\x01")
            receive(host, 1)
            self.assertEqual(simulator.control({"print": "test"}), {"ok": True})
            self.assertEqual(events.next("receipt")["id"], 2)
            self.assertEqual(events.next("receipt")["id"], 3)
            host.sendall(b"more\n")
        self.assertEqual(events.next("receipt")["id"], 4)
        texts = [browser.ask(f"receipts/{i}.txt").content for i in (1, 2, 3, 4)]
        self.assertEqual(texts[1], b"mine\n")
        self.assertEqual(texts[3], b"more\n")
        self.assertEqual(texts[0], texts[2])
        self.assertIn(b"Virtual-58", texts[0])

    def test_the_counters_count_jobs_and_paper_cuts_and_bytes(self):
        simulator, browser = self.open()
        events = self.events(browser)
        print_job(simulator, b"one\n" + CUT + b"two\n\x1b\x70\x00\x10\x10" + CUT)
        events.next("receipt")
        counters = browser.control({"get": "counters"})["counters"]
        self.assertEqual(counters, {"jobs": 1, "cuts": 2, "drawer": 1, "beeps": 0, "bytes": 19})


class WebForms(BrowserCase):
    def test_the_forms_list_every_setting_and_fault_with_its_values(self):
        simulator, browser = self.open()
        forms = browser.json("api/forms")
        self.assertEqual({form["key"] for form in forms["flags"]} | {"firmware", "dip1", "dip2", "speed", "profile", "proofs",
                         "etbCounter", "buffered", "printedBytes"}, set(simulator.state()))
        for form in forms["settings"]:
            value = {"flag": True, "number": form.get("max"), "text": form.get("choices", ["abcd"])[-1]}[form["kind"]]
            self.assertEqual(browser.control({"set": {form["key"]: value}}), {"ok": True}, form)
        samples = {"number": "7", "setting or fault": "speed", "offsets, like 3/7": "3/7", "two hex digits": "0a"}
        for form in forms["faults"]:
            value = "".join(part["before"] + part.get("choices", [samples.get(part["label"], "7")])[0] for part in form["parts"])
            value = True if form["name"] == "prints-nothing" else value.replace("@all", "@block")
            self.assertEqual(browser.control({"fault": {form["name"]: value}}), {"ok": True}, form)
        for action in forms["actions"]:
            self.assertEqual(simulator.control(action["line"]), {"ok": True})

    def test_a_control_line_returns_the_value_of_each_setting(self):
        _, browser = self.open()
        keys = {form["key"] for form in browser.json("api/forms")["settings"]}
        browser.control({"set": {"paper": 58, "utf8": False, "maker": "Mine"}})
        settings = browser.control({"get": "settings"})["settings"]
        self.assertEqual(set(settings), keys)
        self.assertEqual((settings["paper"], settings["utf8"], settings["maker"], settings["codePages"]), (58, False, "Mine", "common"))


class EventStream(BrowserCase):
    def test_the_event_stream_begins_with_the_state_of_all_printers(self):
        _, browser = self.open("--listen", "tcp:0,name=kitchen")
        snapshot = self.events(browser).next()
        self.assertEqual(snapshot["event"], "snapshot")
        self.assertEqual([(p["id"], p["name"]) for p in snapshot["printers"]], [(1, ""), (2, "kitchen")])
        self.assertEqual(snapshot["receipts"], [])
        for key in ("state", "settings", "counters", "faults", "paper", "host", "place"):
            self.assertIn(key, snapshot["printers"][0])

    def test_the_event_stream_has_each_printed_line_of_paper(self):
        simulator, browser = self.open()
        events = self.events(browser)
        with simulator.connect() as host:
            for number in range(3):
                host.sendall(b"line %d\n" % number)
                paper = events.next("paper")
                self.assertEqual((paper["row"], paper["height"], paper["text"]), (30 * number, 30, f"line {number}\n"))
                self.assertEqual(size_of(base64.b64decode(paper["png"])), (576, 30))
            host.sendall(CUT)
            self.assertEqual(events.next("paper")["cuts"], [{"row": 90, "partial": False}])
        self.assertEqual(events.all_of("torn", "receipt")["receipt"]["cuts"], 1)

    def test_the_event_stream_replaces_rows_that_are_printed_over(self):
        simulator, browser = self.open()
        events = self.events(browser)
        with simulator.connect() as host:
            host.sendall(b"under\n")
            self.assertEqual(events.next("paper")["row"], 0)
            host.sendall(b"\x1b\x4b\x1e" + b"over\n\n")
            paper = events.next("paper")
            while paper["height"] < 60:
                paper = events.next("paper")
            self.assertEqual(paper["row"], 0)

    def test_a_page_opened_later_receives_the_paper_printed_before(self):
        simulator, browser = self.open()
        with simulator.connect() as host:
            host.sendall(b"early\n")
            self.events(browser).next("paper")
            late = self.events(browser)
            self.assertEqual([late.next()["event"] for _ in range(2)], ["snapshot", "paper"])

    def test_the_event_stream_has_each_change_of_the_state(self):
        simulator, browser = self.open()
        events = self.events(browser)
        events.next("snapshot")
        simulator.set(coverOpen=True)
        eventually(lambda: events.next("state")["state"]["coverOpen"], "the cover opens")
        browser.control({"fault": {"late-reply": 300}})
        faults = eventually(lambda: events.next("state")["faults"], "the fault is there")
        self.assertEqual(faults, [{"name": "late-reply", "value": "300"}])

    def test_the_event_stream_reports_commands_and_answers_and_control_lines_and_hosts(self):
        simulator, browser = self.open()
        events = self.events(browser)
        with simulator.connect() as host:
            host.sendall(b"Hello\n" + STATUS_REQUEST)
            receive(host, 9)
            simulator.set(coverOpen=True)
        entries = []
        while not any(entry["name"] == "left" for entry in entries):
            entries += events.next("log")["entries"]
        told = [(entry["kind"], entry["name"], entry["meaning"]) for entry in entries]
        for expected in (("command", "text", "Hello"), ("command", "LF", "line feed"),
                         ("command", "ESC ACK", "status request"), ("host", "connected", ""),
                         ("control", "control", '{"set": {"coverOpen": true}}')):
            self.assertIn(expected, told)
        answers = [entry for entry in entries if entry["kind"] == "answer"]
        self.assertEqual([len(entry["bytes"]) for entry in answers], [18])

    def test_a_page_opened_later_receives_the_latest_log_entries(self):
        simulator, browser = self.open()
        events = self.events(browser)
        for _ in range(250):
            simulator.control({"get": "counters"})
        seen = []
        while len(seen) < 250:
            seen += events.next("log")["entries"]
        late = self.events(browser)
        late.next("snapshot")
        simulator.control({"get": "counters"})
        log = late.next("log")
        self.assertEqual((log["entries"], log["skipped"]), (seen[50:], 50))

    def test_the_event_stream_continues_after_the_last_event_that_was_read(self):
        simulator, browser = self.open()
        events = self.events(browser)
        simulator.set(coverOpen=True)
        events.next("state")
        simulator.set(coverOpen=False)
        again = self.events(browser, Last_Event_ID=events.last)
        self.assertNotEqual(again.next()["event"], "snapshot")
        self.assertEqual(self.events(browser, Last_Event_ID="123456789").next()["event"], "snapshot")
        self.assertEqual(self.events(browser, Last_Event_ID="x").next()["event"], "snapshot")


class WebReceipts(BrowserCase):
    JOB = b"\x1b@Hello\n\x1b\x45\x01bold\n\x1d\x79\x00" + CUT

    def receipt(self, data: bytes = JOB, *arguments: str):
        simulator, browser = self.open(*arguments)
        events = self.events(browser)
        print_job(simulator, data)
        return browser, events.next("receipt")

    def test_a_receipt_is_served_as_a_picture_and_as_text_and_as_bytes(self):
        browser, receipt = self.receipt()
        address = receipt["address"]
        self.assertEqual(browser.ask(address + ".bin").content, self.JOB)
        self.assertTrue(browser.ask(address + ".txt").content.startswith(b"Hello\nbold\n"))
        self.assertEqual(size_of(browser.ask(address + ".png").content), (receipt["width"], receipt["height"]))

    def test_a_receipt_names_each_command_of_its_job(self):
        browser, receipt = self.receipt()
        told = browser.json(receipt["address"] + ".json")
        commands = [(c["offset"], c["name"], c["meaning"]) for c in told["commands"]]
        self.assertEqual(commands[:5], [(0, "ESC @", "initialise"), (2, "text", "Hello"), (7, "LF", "line feed"),
                                        (8, "ESC E", "bold"), (11, "text", "bold")])
        self.assertEqual([c["name"] for c in told["commands"] if c.get("unknown")], ["GS y"])
        self.assertEqual([(u["name"], u["offset"]) for u in told["record"]["unknown"]], [("GS y", 16)])
        self.assertEqual((told["kept"], told["bytes"], told["next"]), (len(self.JOB), len(self.JOB), None))

    def test_the_commands_of_a_receipt_are_served_in_parts(self):
        browser, receipt = self.receipt(b"a\n" * 1500)
        address = receipt["address"] + ".json"
        first = browser.json(address)
        self.assertEqual((len(first["commands"]), first["next"]), (2000, 2000))
        rest = browser.json(f"{address}?from={first['next']}")
        self.assertEqual((len(rest["commands"]), rest["commands"][0]["offset"], rest["next"]), (1000, 2000, None))

    def test_the_picture_of_a_long_receipt_is_served_in_pieces(self):
        browser, receipt = self.receipt(b"a line of text\n" * 300)
        address, rows = receipt["address"] + ".png", receipt["pieceRows"]
        self.assertGreater(receipt["height"], 2 * rows)
        pieces = [browser.ask(f"{address}?from={row}") for row in range(0, receipt["height"], rows)]
        self.assertEqual([size_of(piece.content) for piece in pieces],
                         [(receipt["width"], rows)] * 2 + [(receipt["width"], receipt["height"] - 2 * rows)])
        self.assertEqual(b"".join(rows_of(piece.content) for piece in pieces), rows_of(browser.ask(address).content))
        for row in (1, rows + 1, 3 * rows, 10**18):
            self.assertEqual(browser.ask(f"{address}?from={row}").status, 404, row)

    def test_the_picture_of_a_short_receipt_is_served_in_one_piece(self):
        browser, receipt = self.receipt()
        address = receipt["address"] + ".png"
        self.assertEqual(browser.ask(address + "?from=0").content, browser.ask(address).content)
        self.assertEqual(browser.ask(f"{address}?from={receipt['pieceRows']}").status, 404)

    def test_the_receipt_of_a_job_without_paper_has_no_picture(self):
        browser, receipt = self.receipt(b"\x1b\x70\x00\x10\x10")
        self.assertEqual((receipt["width"], receipt["height"]), (0, 0))
        self.assertEqual(browser.ask(receipt["address"] + ".png").status, 404)
        self.assertEqual(browser.json(receipt["address"] + ".json")["record"]["drawer"], 1)

    def test_a_receipt_ends_at_each_cut_if_receipts_are_kept_per_cut(self):
        simulator, browser = self.open("--per", "cut")
        events = self.events(browser)
        print_job(simulator, b"one\n" + CUT + b"two\n" + CUT)
        self.assertEqual([events.next("receipt")["id"] for _ in range(2)], [1, 2])
        self.assertIn(b"two", browser.ask("receipts/2.txt").content)

    def test_a_receipt_names_its_printer(self):
        simulator, browser = self.open("--listen", "tcp:0,name=kitchen")
        events = self.events(browser)
        place = browser.json("api/printers")["printers"][1]["place"]
        self.assertExit(0, run("-d", place, "print", "-", data=b"soup\n"))
        receipt = events.next("receipt")
        self.assertEqual(receipt["printer"], 2)
        self.assertEqual(browser.json(receipt["address"] + ".json")["printerName"], "kitchen")


if __name__ == "__main__":
    main()
