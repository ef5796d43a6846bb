"""The print command on its link: the bytes that it sends, and links that are lost."""

import socket
import threading
import time

from harness import DEADLINE, STATUS_REQUEST, Case, count_etbs, finish, main, receive, run, start, status_block

EVERY_BYTE = bytes(range(256))


class JobBytesOnTheLink(Case):
    """A printer of the test receives the whole job once."""

    def collect(self, data: bytes, read: int, *arguments: str) -> bytes:
        received = bytearray()

        def handle(connection):
            while more := connection.recv(read):
                received.extend(more)

        peer = self.peer(handle)
        result = run("-d", peer.place, "print", "--unchecked", "--json", *arguments, "-", data=data)
        self.assertExit(6, result)
        self.assertEqual(result.json()["bytesAccepted"], len(data))
        peer.wait_until_idle()
        return bytes(received)

    def test_every_byte_value_arrives_at_the_printer_unchanged(self):
        self.assertEqual(self.collect(EVERY_BYTE * 3, 4096), EVERY_BYTE * 3)

    def test_a_mebibyte_arrives_whole_at_a_printer_that_reads_seven_bytes_at_a_time(self):
        data = EVERY_BYTE * 4096
        self.assertEqual(self.collect(data, 7), data)

    def test_a_job_from_a_pipe_that_stalls_is_printed_whole(self):
        simulator = self.simulator()
        began = time.monotonic()
        process = start("-d", simulator.place, "print", "-", "--json", stdin=-1)
        process.stdin.write(b"first half, ")
        process.stdin.flush()
        self.assertEqual(run("-d", simulator.place, "online").code, 0)  # the command has no connection during this wait
        result = finish(process, began, b"second half\n")
        self.assertExit(0, result)
        self.assertEqual(result.json()["bytesAccepted"], 24)

    def test_a_checked_job_arrives_whole_and_is_confirmed_by_the_counter(self):
        job = b"A checked job\n"
        seen = []
        peer = self.peer(lambda connection: seen.append(count_etbs(connection)))
        result = run("-d", peer.place, "print", "-", "--json", data=job)
        self.assertExit(0, result)
        peer.wait_until_idle()
        self.assertEqual(seen[0].count(job), 1)

    def test_a_job_on_a_printer_that_counts_no_end_marks_is_unconfirmed(self):
        def handle(connection):
            unread = b""
            while more := connection.recv(4096):
                unread += more
                while STATUS_REQUEST in unread:
                    unread = unread.split(STATUS_REQUEST, 1)[1]
                    connection.sendall(status_block())

        result = run("-d", self.peer(handle).place, "-t", "1000", "print", "-", "--json", data=b"text\n")
        self.assertExit(6, result)
        self.assertEqual(result.json()["outcome"], "unconfirmed")


class LostLinks(Case):
    def test_a_job_on_a_cut_link_is_reported_as_printed_only_if_it_is_on_paper(self):
        job = self.file("job", b"0123456789" * 5)
        seen = set()
        for count in range(0, 140, 7):
            simulator = self.simulator("tcp:0", "--set", f"cut-after-in={count}")
            result = run("-d", simulator.place, "print", job, "--json")
            answer = result.json()
            outcome = answer["outcome"]
            self.assertEqual(outcome, {0: "printed", 5: "refused", 6: "unconfirmed"}.get(result.code), (count, result))
            self.assertEqual(answer["bytesAccepted"] == 0, outcome == "refused", result)
            if outcome == "printed":
                self.assertEqual(simulator.state()["printedBytes"], 50)
            seen.add(outcome)
            simulator.kill()
        self.assertLessEqual({"refused", "unconfirmed"}, seen)

    def test_a_job_whose_link_is_reset_is_unconfirmed(self):
        def handle(connection):
            receive(connection, 1000)
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")

        result = run("-d", self.peer(handle).place, "print", "--unchecked", "--json", "-", data=b"x" * 8_000_000)
        self.assertExit(6, result)
        self.assertLess(result.json()["bytesAccepted"], 8_000_000)
        self.assertIn("link", result.json()["error"])

    def test_a_slow_printer_that_sends_reports_receives_the_whole_job(self):
        taken = bytearray()
        ended = threading.Event()

        def handle(connection):
            try:
                while piece := connection.recv(700):
                    taken.extend(piece)
                    time.sleep(0.01)
                    connection.sendall(b"\x14")
            except OSError:
                pass  # the host may close the link before the last report
            ended.set()

        data = b"a line of the receipt\n" * 1000
        result = run("-d", self.peer(handle, room=2048).place, "print", "--unchecked", "--json", "-", data=data)
        self.assertEqual(result.json()["bytesAccepted"], len(data))
        self.assertTrue(ended.wait(DEADLINE))
        self.assertEqual(bytes(taken), data)


if __name__ == "__main__":
    main()
