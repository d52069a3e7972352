"""The examples in the package's docstrings run, and what it gives to everybody has one sentence at least."""
import doctest
import importlib
import pkgutil
import unittest

import nadir

MODULES = [importlib.import_module(f"nadir.{module.name}") for module in pkgutil.iter_modules(nadir.__path__)
           if module.name != "__main__"]


class Docs(unittest.TestCase):
    def test_examples_run(self):
        ran = 0
        for module in [nadir, *MODULES]:
            with self.subTest(module.__name__):
                result = doctest.testmod(module)
                ran += result.attempted
                self.assertEqual(result.failed, 0)
        self.assertGreater(ran, 5)

    def test_everything_public_is_described(self):
        for name in nadir.__all__:
            with self.subTest(name):
                described = getattr(nadir, name)
                self.assertTrue((described.__doc__ or "").strip())
                self.assertFalse((described.__doc__ or "").startswith(f"{name}("), "dataclass wrote it, not we")


if __name__ == "__main__":
    unittest.main()
