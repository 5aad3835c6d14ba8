"""Finding the library: in programs of their own, with libraries copied to the folders that are searched."""
import shutil
import sysconfig
import tempfile
import unittest
from pathlib import Path

from tests.kit import PACKAGE, library_folder, run_python

LIBRARIES = ("libOXClass.so", "liboxplatform.so")
#: Prints which files were loaded.
LOADED = """
import oxclass
try:
    oxclass.CreateObject("Collection")
except oxclass.Error as failure:
    print(failure.Number, failure.Description)
else:
    files = {line.split()[-1] for line in open("/proc/self/maps") if "libOXClass" in line or "liboxplatform" in line}
    print("\\n".join(sorted(files)))
"""


class Finding(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name).resolve()

    def package(self, place):
        """A copy of the package in a folder."""
        target = self.folder / place / "oxclass"
        shutil.copytree(PACKAGE, target, ignore=shutil.ignore_patterns("__pycache__"))
        return target

    def libraries(self, place):
        """A copy of both libraries in a folder."""
        target = self.folder / place
        target.mkdir(parents=True, exist_ok=True)
        for name in LIBRARIES:
            shutil.copy(library_folder() / name, target / name)
        return target

    def load(self, package, **environment):
        done = run_python(LOADED, package=package, **{"OXCLASS_LIBRARY": None, **environment})
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def assert_from(self, folder, printed):
        self.assertEqual(printed.split(), sorted(str(folder / name) for name in LIBRARIES))

    # ---- OXCLASS_LIBRARY ----------------------------------------------------------------------------

    def test_a_folder_or_a_file_that_the_variable_names(self):
        package, there = self.package("."), self.libraries("there")
        self.libraries("oxclass")
        self.assert_from(there, self.load(package, OXCLASS_LIBRARY=there))
        self.assert_from(there, self.load(package, OXCLASS_LIBRARY=there / "libOXClass.so"))

    def test_a_wrong_variable_is_an_error_although_a_library_exists_elsewhere(self):
        package = self.package(".")
        self.libraries("oxclass")
        for wrong in ("/nowhere", self.folder, self.folder / "libOXClass.so"):
            printed = self.load(package, OXCLASS_LIBRARY=wrong)
            self.assertTrue(printed.startswith("53 OXCLASS_LIBRARY is "), printed)
            self.assertIn(str(wrong), printed)
            self.assertIn("unset it", printed)

    # ---- beside the package -------------------------------------------------------------------------

    def test_beside_the_package(self):
        package = self.package(".")
        for place in (".", "oxclass"):  # its own folder is searched first
            there = self.libraries(place)
            self.assert_from(there, self.load(package))

    def test_where_an_installation_puts_it(self):
        package = self.package("prefix/share/oxclass/python")
        for place in ("lib64", f"lib/{sysconfig.get_config_var('MULTIARCH')}", "lib"):  # the last is searched first
            there = self.libraries(f"prefix/{place}")
            self.assert_from(there, self.load(package))

    # ---- the system ---------------------------------------------------------------------------------

    def test_what_the_loader_finds_by_name(self):
        there = self.libraries("system")
        self.assert_from(there, self.load(self.package("."), LD_LIBRARY_PATH=there))

    # ---- nothing ------------------------------------------------------------------------------------

    def test_nowhere(self):
        package = self.package("prefix/share/oxclass/python")
        printed = self.load(package)
        self.assertTrue(printed.startswith("53 libOXClass.so was not found. Looked in:\n"), printed)
        for place in (package, package.parent, self.folder / "prefix/lib", "the loader's search by name",
                      "/usr/local/lib", "/usr/lib"):
            self.assertIn(f"\n  {place}\n", printed)
        self.assertIn("Set OXCLASS_LIBRARY to the folder", printed)

    def test_the_import_needs_no_library(self):
        done = run_python("import oxclass; print(oxclass.imggTypeSC.name, oxclass.Null)", package=self.package("."),
                          OXCLASS_LIBRARY="/nowhere")
        self.assertEqual((done.stdout, done.stderr), ("imggTypeSC oxclass.Null\n", ""))

    def test_after_a_failure_the_next_call_searches_again(self):
        code = ("import os, oxclass\n"
                "try: oxclass.CreateObject('Collection')\n"
                "except oxclass.Error as failure: print(failure.Number)\n"
                f"os.environ['OXCLASS_LIBRARY'] = {str(library_folder())!r}\n"
                "print(len(oxclass.CreateObject('Collection')))")
        done = run_python(code, OXCLASS_LIBRARY="/nowhere")
        self.assertEqual((done.stdout, done.stderr), ("53\n0\n", ""))

    # ---- files that are not libraries ---------------------------------------------------------------

    def test_a_file_that_is_not_a_library(self):
        there = self.libraries("there")
        for name in LIBRARIES:
            with self.subTest(name):
                self.libraries("there")
                (there / name).write_text("text")
                printed = self.load(self.package(name), OXCLASS_LIBRARY=there)
                self.assertTrue(printed.startswith(f"48 {there}/libOXClass.so can't be loaded: "), printed)

    def test_one_without_the_other(self):
        there = self.libraries("there")
        (there / "liboxplatform.so").unlink()
        printed = self.load(self.package("."), OXCLASS_LIBRARY=there)
        self.assertTrue(printed.startswith("48 "), printed)
        self.assertIn("liboxplatform.so", printed)
