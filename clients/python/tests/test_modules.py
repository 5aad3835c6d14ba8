"""The modules of the package build on each other in one direction."""
import ast
import pathlib
import unittest

PACKAGE = pathlib.Path(__file__).resolve().parent.parent / "oxclass"


def imports_of(file):
    """The modules of the package that a file imports, inside of functions as well."""
    for node in ast.walk(ast.parse(file.read_text(encoding="utf-8"))):
        if isinstance(node, ast.ImportFrom) and node.level == 1:
            yield from [node.module] if node.module else [alias.name for alias in node.names]


class Modules(unittest.TestCase):
    def test_no_module_imports_itself_through_others(self):
        uses = {file.stem: set(imports_of(file)) for file in PACKAGE.glob("*.py")}
        self.assertIn("_objects", uses["_values"])
        done = set()
        while True:
            ready = {name for name, used in uses.items() if name not in done and used - {name} <= done}
            if not ready:
                break
            done |= ready
        self.assertEqual(sorted(set(uses) - done), [], "these modules form a cycle, or use one")


if __name__ == "__main__":
    unittest.main()
