#!/usr/bin/env python3
"""The documented profile schema and quillset-sim's own checks agree.

Every shipped profile passes both. Then each value of some shipped profiles is replaced in
turn by a value of another JSON type; the schema and `quillset-sim check` must both accept the
result or both refuse it, and a refusal from quillset-sim names the key path. Keys the schema
does not know are refused by it and only warned about by quillset-sim.

Usage: profile_schema_test.py SOURCE_ROOT QUILLSET_SIM
"""

import copy
import json
import os
import subprocess
import sys
import tempfile
import unittest

import jsonschema

ROOT = None
SIM = None
MUTATED = ("default", "cdma", "kr-carrier", "esim-standalone")


def profile_names():
    directory = os.path.join(ROOT, "sim", "profiles")
    return sorted(f[:-5] for f in os.listdir(directory) if f.endswith(".json"))


def load_profile(name):
    with open(os.path.join(ROOT, "sim", "profiles", name + ".json"), encoding="utf-8") as f:
        return json.load(f)


def leaves(value, path=()):
    """Every value in the document with its path of keys and indexes."""
    yield path, value
    if isinstance(value, dict):
        for key, child in value.items():
            yield from leaves(child, path + (key,))
    elif isinstance(value, list):
        for index, child in enumerate(value):
            yield from leaves(child, path + (index,))


def replaced(document, path, value):
    out = copy.deepcopy(document)
    target = out
    for step in path[:-1]:
        target = target[step]
    target[path[-1]] = value
    return out


def other_types(value):
    """Values of every JSON type but the value's own."""
    candidates = [True, 7, 2.5, "seven", [], {}, None]
    own = type(value)
    return [c for c in candidates if type(c) is not own and not (own is int and c is True)]


def dotted(path):
    """A path the way quillset-sim writes it: storage.block_size, settings["db/x"], faults[0]."""
    text = ""
    for step in path:
        if isinstance(step, int):
            text += "[%d]" % step
        elif step.replace("_", "").isalnum():
            text += ("." if text else "") + step
        else:
            text += "[%s]" % json.dumps(step)
    return text


class ProfileSchemaTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with open(os.path.join(ROOT, "sim", "schema", "profile.schema.json"), encoding="utf-8") as f:
            cls.schema = json.load(f)
        jsonschema.Draft7Validator.check_schema(cls.schema)
        cls.validator = jsonschema.Draft7Validator(cls.schema)
        cls.tmp = tempfile.TemporaryDirectory()

    @classmethod
    def tearDownClass(cls):
        cls.tmp.cleanup()

    def check(self, documents):
        """quillset-sim's verdict on each document: (accepted, its output line(s))."""
        paths = []
        for n, document in enumerate(documents):
            path = os.path.join(self.tmp.name, "case%04d.json" % n)
            with open(path, "w", encoding="utf-8") as f:
                json.dump(document, f)
            paths.append(path)
        # One call for all: each profile's report starts with its path, warnings indented.
        run = subprocess.run([SIM, "check"] + paths, capture_output=True, text=True)
        reports = {path: "" for path in paths}
        current = None
        for line in run.stdout.splitlines():
            if not line.startswith(" "):
                current = next((p for p in paths if line.startswith(p + ":")), None)
            if current:
                reports[current] += line + "\n"
        verdicts = []
        for path in paths:
            first = reports[path].split("\n", 1)[0]
            verdicts.append((first.startswith(path + ": ok"), reports[path]))
        return verdicts

    def test_every_shipped_profile_follows_the_schema_and_loads_without_warnings(self):
        names = profile_names()
        self.assertGreaterEqual(len(names), 10)
        for name in names:
            errors = [e.message for e in self.validator.iter_errors(load_profile(name))]
            self.assertEqual(errors, [], name)
        run = subprocess.run([SIM, "check"] + names, capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assertNotIn("warning", run.stdout)

    def test_schema_and_loader_agree_on_every_wrongly_typed_value(self):
        cases = []
        for name in MUTATED:
            document = load_profile(name)
            for path, value in leaves(document):
                if not path:
                    continue
                for other in other_types(value):
                    cases.append((name, path, other, replaced(document, path, other)))
        self.assertGreater(len(cases), 300)
        verdicts = self.check([c[3] for c in cases])
        refused = 0
        for (name, path, other, document), (loaded, output) in zip(cases, verdicts):
            valid = self.validator.is_valid(document)
            where = "%s: %s = %s" % (name, dotted(path), json.dumps(other))
            self.assertEqual(valid, loaded, "%s: schema %s, quillset-sim %s: %s" % (
                where, "accepts" if valid else "refuses", "accepts" if loaded else "refuses",
                output.strip()))
            if not loaded:
                refused += 1
                self.assertIn(dotted(path), output, where)
                self.assertIn("expected", output, where)
        self.assertGreater(refused, len(cases) // 2)

    def test_unknown_keys_are_outside_the_schema_and_only_warned_about(self):
        document = load_profile("default")
        document["storage"]["blocksize"] = 4096
        document["colour"] = "blue"
        self.assertFalse(self.validator.is_valid(document))
        [(loaded, output)] = self.check([document])
        self.assertTrue(loaded, output)
        self.assertIn("storage.blocksize: unknown key (ignored)", output)
        self.assertIn("colour: unknown key (ignored)", output)

    def test_a_profile_describes_some_part_of_a_watch(self):
        cases = [({}, False), ({"description": "mine"}, False), ({"wifi": {}}, True)]
        verdicts = self.check([document for document, _ in cases])
        for (document, accepted), (loaded, output) in zip(cases, verdicts):
            self.assertEqual(self.validator.is_valid(document), accepted, document)
            self.assertEqual(loaded, accepted, output)
        self.assertIn("describes no part of a watch", verdicts[0][1])
        [(loaded, output)] = self.check([{"wifi": {}, "colour": "blue"}])
        self.assertIn(": ok with 1 warning\n", output)

    def test_warnings_are_given_beside_an_error(self):
        document = {"colour": "blue", "storage": {"block_size": "4k"}, "wifi": {"mac": "x"}}
        [(loaded, output)] = self.check([document])
        self.assertFalse(loaded)
        for part in ("storage.block_size: expected a positive integer",
                     "colour: unknown key (ignored)", "wifi.mac: unknown key (ignored)"):
            self.assertIn(part, output)

    def test_malformed_json_is_refused_with_its_line_and_column(self):
        path = os.path.join(self.tmp.name, "broken.json")
        with open(path, "w", encoding="utf-8") as f:
            f.write('{\n  "storage": {"block_size": 4096,}\n}\n')
        run = subprocess.run([SIM, "check", path], capture_output=True, text=True)
        self.assertEqual(run.returncode, 1)
        self.assertIn(path + ": line 2, column ", run.stdout)


if __name__ == "__main__":
    ROOT, SIM = sys.argv[1], sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)
