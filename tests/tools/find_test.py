"""`quorport find`: the devices that could be printers."""

from harness import Case, main, run


class Find(Case):
    def test_the_find_command_succeeds_with_text_and_with_json_output(self):
        result = run("find", "--json")
        self.assertExit(0, result)
        answer = result.json()
        self.assertEqual(set(answer), {"ok", "found"})
        self.assertIs(answer["ok"], True)
        for found in answer["found"]:
            self.assertEqual(set(found), {"device", "name", "serialNumber", "via", "reachable"})
        plain = run("find")
        self.assertExit(0, plain)
        self.assertTrue(plain.out.strip())


if __name__ == "__main__":
    main()
