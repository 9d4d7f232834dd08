"""The Python module against the built library (TAVCH_LIBRARY) and the header (argument 1)."""

import gc
import re
import sys
import threading
import unittest

import tavch

HEADER = sys.argv.pop(1)


class Binding(unittest.TestCase):
    def test_every_function_of_the_header_has_its_parameters(self):
        with open(HEADER, encoding="ascii") as file:
            text = re.sub(r"/\*.*?\*/", "", file.read(), flags=re.S)
        declared = dict(re.findall(r"\btavStatus (tavs\w+)\((.*?)\);", text, flags=re.S))
        kinds = [(r"^const char\*", "s"), (r"^int32_t\* \w*(?:errOffset|size|result|p\w*|srcLen|dstLen|num\w+)$", "I"),
                 (r"^uint32_t\*", "U"), (r"\*", "p"), (r"^int32_t ", "i"), (r"^uint32_t ", "u"), (r"^uint8_t ", "b"),
                 (r"^uint16_t ", "h")]
        signatures = tavch._signatures()
        self.assertEqual(set(declared), set(signatures))
        self.assertEqual(len(signatures), 89)
        for name, parameters in declared.items():
            letters = ""
            for parameter in re.sub(r"\s+", " ", parameters).split(","):
                letters += next(letter for shape, letter in kinds if re.search(shape, parameter.strip()))
            # Lengths in an array and pointers to one number look alike in C.
            self.assertEqual(letters.replace("I", "p"), signatures[name].replace("I", "p"), name)

    def test_every_status_of_the_header_has_its_name(self):
        with open(HEADER, encoding="ascii") as file:
            declared = re.findall(r"^\s+(tavSts\w+) = (-?\d+)", file.read(), flags=re.M)
        self.assertEqual(tavch.STATUS_NAMES, {int(value): name for name, value in declared})

    def test_version(self):
        version = tavch.version()
        self.assertEqual(version[:4], (8, 2, 3, 48108))
        self.assertEqual(version.text, "8.2.3 (r48108)")


class Patterns(unittest.TestCase):
    def test_the_typical_request(self):
        match = tavch.Pattern("a(b+)c", "i").find("xxABBBcyy")
        self.assertEqual((match[0], match[1]), ("ABBBc", "BBB"))
        self.assertEqual((match.span(), match.span(1)), ((2, 7), (3, 6)))
        self.assertIsNone(tavch.Pattern("a(b+)c").find("xxABBBcyy"))

    def test_bytes_stay_bytes_and_positions_follow(self):
        text = "\u20ac5 \u20ac7"
        digit = tavch.Pattern(r"\d")
        self.assertEqual([m.start() for m in digit.find_all(text)], [1, 4])
        self.assertEqual([m.start() for m in digit.find_all(text.encode())], [3, 8])
        self.assertEqual(digit.find(text.encode())[0], b"5")

    def test_a_group_that_took_no_part_is_none(self):
        match = tavch.Pattern("(a)|(b)").find("b")
        self.assertEqual(match.groups(), (None, "b"))
        self.assertEqual(match.span(1), (-1, -1))
        self.assertEqual(len(match), 3)

    def test_all_matches_however_many(self):
        for pattern in ("a", "(a)"):
            for count in (0, 1, 15, 16, 17, 64, 1000):
                self.assertEqual(len(tavch.Pattern(pattern).find_all("a" * count)), count)

    def test_matches_see_the_whole_subject(self):
        self.assertEqual(len(tavch.Pattern("^(a)").find_all("aaa")), 1)
        self.assertEqual(len(tavch.Pattern("(?<=a)(a)").find_all("aaa")), 2)

    def test_errors_tell_status_name_and_offset(self):
        for pattern, options, name, offset in (("ab(c", "", "tavStsPatternSyntax", 4), ("a**", "", "tavStsRepeatLimit", 2),
                                               ("a", "q", "tavStsBadOption", 0), ("a\0", "", "tavStsBadArgument", 1)):
            with self.assertRaises(tavch.Error) as caught:
                tavch.Pattern(pattern, options)
            self.assertEqual((caught.exception.name, caught.exception.offset), (name, offset))

    def test_replacement(self):
        date = tavch.Pattern(r"(\d+)-(\d+)-(\d+)")
        text = "2026-11-20 and 2027-01-02"
        self.assertEqual(date.replace(text, "$3.$2.$1"), "20.11.2026 and 02.01.2027")
        self.assertEqual(date.replace(text, "$3.$2.$1", count=1), "20.11.2026 and 2027-01-02")
        self.assertEqual(date.replace(b"1-2-3", b"<$&>"), b"<1-2-3>")
        self.assertEqual(tavch.Pattern("a").replace("a" * 1000, "x" * 50), "x" * 50000)
        self.assertEqual(tavch.Pattern("a*").replace("", "<$&>"), "<>")
        with self.assertRaises(tavch.Error):
            date.replace(text, "$")

    def test_limit_and_format(self):
        pattern = tavch.Pattern("(?:ab)*$")
        pattern.set_match_limit(1)
        self.assertIsNone(pattern.find("abab"))
        with self.assertRaises(tavch.Error):
            pattern.set_match_limit(-1)
        byte = tavch.Pattern(r"\C$")
        byte.set_whole_characters(False)
        self.assertEqual(byte.find("\u20ac".encode()).start(), 2)

    def test_threads_share_a_pattern(self):
        pattern, wrong = tavch.Pattern(r"(\w+)@(\w+)"), []

        def work(number):
            for _ in range(200):
                if pattern.find(f"x user{number}@host y")[1] != f"user{number}":
                    wrong.append(number)

        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])

    def test_a_set_tells_which_patterns_match(self):
        members = tavch.PatternSet(3)
        members.add(tavch.Pattern(r"\d+"), 1)
        members.add(tavch.Pattern("[a-z]+"), 2)
        members.add(tavch.Pattern("!"), 3)
        hits = members.find("ab 12")
        self.assertEqual({key: hits[key][0] for key in hits}, {1: "12", 2: "ab"})
        members.remove(2)
        self.assertEqual(set(members.find("ab 12")), {1})
        self.assertEqual(members.find(""), {})
        with self.assertRaises(tavch.Error):
            members.remove(2)


class Strings(unittest.TestCase):
    def test_a_set_keeps_the_patterns_of_its_slots(self):
        patterns = tavch.PatternSet(2)
        patterns.add(tavch.Pattern("a"), 1)
        patterns.add(tavch.Pattern("b"), 1)
        patterns.remove(1)
        patterns.add(tavch.Pattern("c"), 1)
        patterns.remove(1)
        gc.collect()
        self.assertEqual(patterns.find("c"), {})
        self.assertEqual(list(patterns.find("b")), [1])

    def test_lone_surrogates_come_back_as_they_were(self):
        self.assertEqual(tavch.Pattern("x").replace("a\ud800x", "y"), "a\ud800y")
        self.assertEqual(tavch.Pattern("x").find("a\udc80x").start(), 2)

    def test_a_great_count_of_replacements_costs_nothing(self):
        self.assertEqual(tavch.Pattern("a").replace("aaa", "b", count=2**31 - 1), "bbb")

    def test_searches(self):
        self.assertEqual((tavch.find("b\u00e4nana", "an"), tavch.rfind("banana", "an")), (3, 3))
        self.assertEqual(tavch.find(b"banana", b""), -1)

    def test_hash(self):
        self.assertEqual(tavch.hash31("ab"), 97 * 31 + 98)

    def test_conversion(self):
        text = "\u20ac \U0001F600 a"
        self.assertEqual(tavch.to_utf16(text.encode()), text.encode("utf-16-le"))
        self.assertEqual(tavch.to_utf8(text.encode("utf-16-le")), text.encode())
        self.assertEqual((tavch.to_utf16(b""), tavch.to_utf8(b"")), (b"", b""))

    def test_case_of_all_letters(self):
        self.assertEqual((tavch.uppercase("\u00e9\u0431"), tavch.lowercase("\u00c9")), ("\u00c9\u0411", "\u00e9"))
        self.assertEqual(tavch.compare_ignore_case("\u00c9a", "\u00e9"), 1)


if __name__ == "__main__":
    unittest.main()
