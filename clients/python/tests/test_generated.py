"""The generated files, compared with the type description and with the objects."""
import ast
import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import oxclass
from tests.kit import PACKAGE, program

GENERATOR = PACKAGE.parent / "generate.py"
GENERATED = ("_enumerations.py", "_described.pyi", "__init__.pyi")


def described_names(node):
    return {item.name for item in node.body if isinstance(item, ast.FunctionDef)}


class Generated(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(holder.cleanup)
        cls.folder = Path(holder.name)
        cls.file = cls.folder / "OXClass.json"
        cls.file.write_text(program("idl", "--json"), encoding="utf-8")
        cls.description = json.loads(cls.file.read_text(encoding="utf-8"))

    def run_generator(self, generator, *arguments):
        return subprocess.run([sys.executable, str(generator), *map(str, arguments)], capture_output=True, text=True)

    def test_they_match_the_type_description(self):
        done = self.run_generator(GENERATOR, self.file, "--check")
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def copy(self):
        """The generator with the generated files, in a folder of its own."""
        place = Path(tempfile.mkdtemp(dir=self.folder))
        (place / "oxclass").mkdir()
        shutil.copy(GENERATOR, place)
        for name in GENERATED:
            shutil.copy(PACKAGE / name, place / "oxclass")
        return place

    def test_a_check_names_what_differs_and_writes_nothing(self):
        place = self.copy()
        changed = place / "oxclass" / "_described.pyi"
        changed.write_text("# other\n", encoding="utf-8")
        done = self.run_generator(place / "generate.py", self.file, "--check")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count("_described.pyi"), 1)
        self.assertNotIn("_enumerations.py", done.stderr)
        self.assertEqual(changed.read_text(encoding="utf-8"), "# other\n")

    def rejected(self, change):
        """Returns the generator's error for a changed description; checks that no file changes."""
        place = self.copy()
        for name in GENERATED:
            (place / "oxclass" / name).write_text("# other\n", encoding="utf-8")
        description = json.loads(self.file.read_text(encoding="utf-8"))
        change(description)
        (place / "changed.json").write_text(json.dumps(description), encoding="utf-8")
        done = self.run_generator(place / "generate.py", place / "changed.json")
        self.assertNotEqual(done.returncode, 0)
        self.assertEqual({path.name: path.read_text(encoding="utf-8") for path in (place / "oxclass").iterdir()},
                         {name: "# other\n" for name in GENERATED})
        self.assertEqual(sorted(path.name for path in place.iterdir()), ["changed.json", "generate.py", "oxclass"])
        return done.stderr

    def test_a_name_with_two_meanings_is_rejected(self):
        said = self.rejected(lambda description: description["enumerations"].append(
            {"name": "Twice", "values": [{"name": "ctUnknown", "value": 1}]}))
        self.assertIn("ctUnknown would be both a value of CardTypes and a value of Twice", said)

    def test_after_a_failed_write_no_file_has_changed(self):
        said = self.rejected(lambda description: description["classes"][0].update({"class": "half a pair \ud800"}))
        self.assertIn("UnicodeEncodeError", said)

    def test_it_writes_all_files(self):
        place = self.copy()
        for name in GENERATED:
            (place / "oxclass" / name).unlink()
        self.assertEqual(self.run_generator(place / "generate.py", self.file).returncode, 0)
        for name in GENERATED:
            self.assertEqual((place / "oxclass" / name).read_text(encoding="utf-8"),
                             (PACKAGE / name).read_text(encoding="utf-8"))

    def test_the_stubs_have_what_the_objects_have(self):
        tree = ast.parse((PACKAGE / "_described.pyi").read_text(encoding="utf-8"))
        stubs = {node.name: described_names(node) for node in tree.body if isinstance(node, ast.ClassDef)}
        for described in self.description["classes"]:
            with self.subTest(described["name"]):
                there = oxclass.CreateObject(described["name"])
                own = {name for name in vars(type(there)) if not name.startswith("__")} - {"_names", "_puts"}
                special = {"__call__", "__getitem__", "__len__"} & set(vars(type(there)))
                special |= {"__iter__"} if type(there).__iter__ is not None else set()
                self.assertEqual(stubs[described["class"]], own | special)
                if described["global"]:
                    self.assertEqual(type(oxclass.Global(described["name"])), type(there))

    def test_the_stubs_can_be_read(self):
        tree = ast.parse((PACKAGE / "__init__.pyi").read_text(encoding="utf-8"))
        names = {node.name for node in tree.body if isinstance(node, (ast.FunctionDef, ast.ClassDef))}
        names |= {node.target.id for node in tree.body if isinstance(node, ast.AnnAssign)}
        enumerations = self.description["enumerations"] + self.description["host"]["enumerations"]
        documented = {name for enumeration in enumerations
                      for name in [enumeration["name"]] + [value["name"] for value in enumeration["values"]]}
        self.assertEqual(names | documented, set(oxclass.__all__))

    def test_enumerations_have_their_values(self):
        for enumeration in self.description["enumerations"] + self.description["host"]["enumerations"]:
            there = getattr(oxclass, enumeration["name"])
            for value in enumeration["values"]:
                self.assertEqual(getattr(oxclass, value["name"]), value["value"])
                self.assertIs(getattr(there, value["name"]), getattr(oxclass, value["name"]))
