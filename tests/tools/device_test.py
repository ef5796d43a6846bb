"""The commands that read facts from a printer and its Bluetooth module, with printers that answer in every way."""

import itertools
import string

from harness import (STATUS_REQUEST, Case, answering, at_once, in_pieces, last_words, main, run, status_block)

ON_LINE = {b"\x10\x04" + bytes([n]): b"\x12" for n in (1, 2, 4)} | {STATUS_REQUEST: status_block()}

FIRMWARE = {"line": (b"\x1b\x23\x2a\x0a\x00", b"\x1b\x23\x2a%s\x0a\x00"), "escpos": (b"\x1d\x49\x41", b"\x5f%s\x00")}

ADDRESS_REQUEST = b"AT*AILBA?\r"
ADDRESS = b"\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n"
DROP_REQUEST = b"AT*AMWS=10,0,0,0,1,0\r"


def bank_request(bank: int) -> bytes:
    return b"\x1b\x23\x2c%d\x0a\x00" % bank


def bank_reply(bank: int, settings: bytes) -> bytes:
    return b"\x1b\x23\x2c%d%s\x0a" % (bank, settings)


def banks(first: bytes, second: bytes = b"\0\0") -> dict[bytes, bytes]:
    return {bank_request(1): bank_reply(1, first), bank_request(2): bank_reply(2, second)}


def pieces_of(reply: bytes):
    """All ways to divide the reply into two pieces."""
    return [(reply[:offset], reply[offset:]) for offset in range(1, len(reply))]


class Asking(Case):
    """Tests in which each run of the command asks a printer of its own, so that many runs can be parallel."""

    def answer(self, replies: dict, *arguments: str):
        place = self.peer(answering(replies)).place
        result = run("-d", place, *arguments, "--json")
        self.assertExit(0, result)
        answer = result.json()
        self.assertEqual(answer.pop("device"), place)
        return answer

    def failure(self, code: int, replies: dict, *arguments: str) -> str:
        result = run("-d", self.peer(answering(replies)).place, *arguments, "--json")
        self.assertExit(code, result)
        self.assertIs(result.json()["ok"], False)
        return result.json()["error"]


class Firmware(Asking):
    def assertTold(self, text: str, emulation: str, reply):
        replies = ON_LINE | {FIRMWARE[emulation][0]: reply}
        self.assertEqual(self.answer(replies, "-e", emulation, "firmware"), {"ok": True, "firmware": text})

    def test_firmware_texts_of_every_length_are_read_in_both_emulations(self):
        letters = (string.ascii_letters + string.digits + string.punctuation)[:64]
        at_once((self.assertTold, letters[:length], emulation, reply % letters[:length].encode())
                for emulation, (_, reply) in FIRMWARE.items() for length in range(1, 65))

    def test_a_reply_without_its_frame_bytes_is_refused(self):
        request, _ = FIRMWARE["escpos"]
        at_once((self.failure, 1, ON_LINE | {request: reply}, "-t", "0", "-e", "escpos", "firmware")
                for reply in (b"\x12\x5fV1.2\x00", b"V1.2\x00", b"\x12\x00"))

    def test_a_firmware_reply_in_two_pieces_is_refused(self):
        at_once((self.failure, 1, ON_LINE | {request: in_pieces(*pieces, pause=0.2)},
                 "-t", "1000", "-e", emulation, "firmware")
                for emulation, (request, reply) in FIRMWARE.items() for pieces in pieces_of(reply % b"V1.2"))

    def test_a_firmware_reply_that_is_cut_off_is_reported_as_a_lost_link(self):
        at_once((self.failure, 5, ON_LINE | {request: last_words(words)}, "-t", "1000", "-e", emulation, "firmware")
                for emulation, (request, reply) in FIRMWARE.items() for words, _ in pieces_of(reply % b"V1.2"))


class DipSwitches(Asking):
    def assertTold(self, settings: tuple[bytes, bytes], replies: dict):
        self.assertEqual(self.answer(replies, "dipswitch"), {"ok": True, "banks": [bank.hex() for bank in settings]})

    def test_dip_switch_banks_may_contain_the_bytes_that_frame_a_reply(self):
        settings = [bytes(pair) for pair in itertools.product((0x00, 0x0a, 0x1b, 0x23), repeat=2)]
        at_once((self.assertTold, pair, banks(*pair)) for pair in zip(settings, reversed(settings)))

    def test_dip_switch_replies_in_two_pieces_are_refused(self):
        at_once((self.failure, 1, banks(b"\x45\x02") | {bank_request(bank): in_pieces(*pieces, pause=0.2)},
                 "-t", "1000", "dipswitch")
                for bank in (1, 2) for pieces in pieces_of(bank_reply(bank, b"\x45\x02")))

    def test_a_dip_switch_reply_that_is_cut_off_is_reported_as_a_lost_link(self):
        at_once((self.failure, 5, banks(b"\x45\x02") | {bank_request(bank): last_words(words)},
                 "-t", "1000", "dipswitch")
                for bank in (1, 2) for words, _ in pieces_of(bank_reply(bank, b"\x45\x02")))

    def test_button_security_is_zero_if_it_is_off_and_otherwise_its_setting_plus_the_time_out(self):
        def check(timeout: int, setting: int, milliseconds: int):
            replies = banks(bytes([setting << 6 | 0x0a, 0x0a]))
            self.assertEqual(self.answer(replies, "-t", str(timeout), "button-security"),
                             {"ok": True, "milliseconds": milliseconds})

        at_once((check, timeout, setting, (time + timeout) % 2**32)
                for timeout in (1001, 12345, 4294967295) for setting, time in enumerate((20000, 10000, 5000)))
        at_once((check, timeout, 3, 0) for timeout in (1001, 4294967295))

    def test_button_security_adds_even_a_very_short_time_out_to_its_setting(self):
        """With so short a time-out, only the built-in printer is sure to answer in time."""
        for timeout in (0, 1, 999):
            result = run("-d", "virtual:,dip1=4a0a", "-t", str(timeout), "button-security", "--json")
            self.assertExit(0, result)
            self.assertAnswers("virtual:,dip1=4a0a", {"ok": True, "milliseconds": 10000 + timeout}, result)

    def test_button_security_is_read_from_a_reply_in_two_pieces(self):
        def check(pieces):
            replies = {bank_request(1): in_pieces(*pieces)}
            self.assertEqual(self.answer(replies, "-t", "2007", "button-security")["milliseconds"], 12007)

        at_once((check, pieces) for pieces in pieces_of(bank_reply(1, b"\x45\x02")))

    def test_a_button_security_reply_that_is_cut_off_is_an_error(self):
        at_once((self.failure, 5, {bank_request(1): last_words(words)}, "-t", "1000", "button-security")
                for words, _ in pieces_of(bank_reply(1, b"\x45\x02")))


class BluetoothModule(Asking):
    """The module does not answer when it enters its command mode, so the peers answer only the later requests."""

    def assertDrops(self, replies: dict):
        self.assertEqual(self.answer(replies, "-t", "3000", "disconnect"), {"ok": True})

    def assertStays(self, replies: dict):
        self.failure(1, replies, "-t", "1000", "disconnect")

    def test_disconnect_succeeds_if_the_module_drops_the_link_after_any_answer(self):
        at_once((self.assertDrops, {ADDRESS_REQUEST: ADDRESS, DROP_REQUEST: last_words(words)})
                for words in (b"", b"\r\nOK\r\n", b"\r\nO", bytes(5000)))

    def test_disconnect_fails_if_the_module_does_not_answer_or_does_not_drop_the_link(self):
        at_once((self.assertStays, replies) for replies in (
            {},
            {ADDRESS_REQUEST: b"\r\nERROR\r\n"},
            {ADDRESS_REQUEST: b"\r\nERROR\r\n" + ADDRESS},
            {ADDRESS_REQUEST: b"\r\nOK\r\n"},
            {ADDRESS_REQUEST: ADDRESS},
            {ADDRESS_REQUEST: ADDRESS, DROP_REQUEST: b"\r\nOK\r\n"},
            {ADDRESS_REQUEST: ADDRESS, DROP_REQUEST: b"\r\nERROR\r\n"}))

    def test_disconnect_reports_an_answer_without_a_whole_address(self):
        def check(answer: bytes):
            error = self.failure(1, {ADDRESS_REQUEST: answer}, "-t", "1000", "disconnect")
            self.assertEqual(error, "the Bluetooth module answered without its address")

        at_once((check, answer) for answer in (b"\r\nOK\r\n", b"\r\n*AILBA:0011\r\nOK\r\n"))

    def test_disconnect_fails_if_the_answer_arrives_in_two_pieces(self):
        self.assertStays({ADDRESS_REQUEST: in_pieces(ADDRESS[:-3], ADDRESS[-3:], pause=0.5)})

    def test_disconnect_reports_a_link_that_is_lost_before_the_answer(self):
        at_once((self.failure, 5, {ADDRESS_REQUEST: last_words(words)}, "-t", "1000", "disconnect")
                for words in (b"", ADDRESS[:10]))


if __name__ == "__main__":
    main()
