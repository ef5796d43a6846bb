"""`quorport find`: the devices that could be printers."""

from harness import Case, main, run


class Find(Case):
    def test_find_always_succeeds_as_text_and_as_json(self):
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
