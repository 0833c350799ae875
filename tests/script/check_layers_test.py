"""Which includes and imports script/check-layers lets pass and which it rejects."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).parents[2] / "script" / "check-layers"
# Three layers, of which the highest is a folder inside another one's.
LAYERS = {
    "model/CMakeLists.txt": "aulora_add_library(aulora_model SOURCES Store.h LINK Qt6::Core)",
    "model/Store.h": "",
    "ui/CMakeLists.txt": "aulora_add_qml_library(aulora_ui URI Aulora.Ui QML Pane.qml # aulora_app\n"
                         "  SOURCES View.h LINK aulora_model Qt6::Quick)",
    "ui/View.h": "",
    "ui/app/CMakeLists.txt": "aulora_add_qml_library(\n  aulora_app\n  URI Aulora SOURCES Main.cpp\n"
                             "  LINK aulora_uiplugin)\ntarget_link_libraries(other aulora_model)",
}


class CheckLayersTest(unittest.TestCase):
    def check(self, files):
        """Runs the check over the layers and these files; its exit status and what it printed."""
        with tempfile.TemporaryDirectory() as folder:
            for name, source in {**LAYERS, **files}.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(source, encoding="utf-8")
            run = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True)
            self.assertEqual(run.stderr, "")
            return run.returncode, run.stdout.replace(folder + "/", "")

    def test_passes(self):
        for name, source in [
            ("model/Store.cpp", '#include "Store.h"\n#include <QString>\n'),
            ("model/detail/Store.cpp", '#include "Store.h"'),
            ("model/Store.cpp", '// #include "View.h"'),
            ("ui/View.cpp", '#include "Store.h"'),
            ("ui/Pane.qml", "import QtQuick\nimport Aulora.Ui\n"),
            ("ui/app/Main.cpp", '#include "View.h"'),
            ("ui/app/Main.qml", "import Aulora.Ui"),
            ("elsewhere/Main.cpp", '#include "View.h"'),
        ]:
            with self.subTest(f"{name}: {source}"):
                self.assertEqual(self.check({name: source})[0], 0)

    def test_rejects(self):
        for name, source, complaint in [
            ("model/Store.cpp", '#include "Store.h"\n#include "View.h"\n',
             "model/Store.cpp:2: View.h belongs to aulora_ui, which aulora_model does not link\n"),
            ("model/Store.h", '#  include <View.h>',
             "model/Store.h:1: View.h belongs to aulora_ui, which aulora_model does not link\n"),
            ("model/Store.mm", '#include "../ui/View.h"',
             "model/Store.mm:1: ../ui/View.h "
             "belongs to aulora_ui, which aulora_model does not link\n"),
            # Not what a layer that it links uses.
            ("ui/app/Main.cpp", '#include "Store.h"',
             "ui/app/Main.cpp:1: Store.h "
             "belongs to aulora_model, which aulora_app does not link\n"),
            ("ui/Pane.qml", "import QtQuick\nimport Aulora as A\n",
             "ui/Pane.qml:2: Aulora belongs to aulora_app, which aulora_ui does not link\n"),
        ]:
            with self.subTest(f"{name}: {source}"):
                self.assertEqual(self.check({name: source}), (1, complaint))

    def test_a_library_for_each_of_two_systems(self):
        model = ("if(APPLE)\n  aulora_add_library(aulora_model SOURCES Store.h)\nelse()\n"
                 "  aulora_add_library(aulora_model SOURCES Store.h\n    LINK aulora_other)\nendif()")
        files = {"model/CMakeLists.txt": model, "model/Store.cpp": '#include "Other.h"',
                 "other/Other.h": "", "other/CMakeLists.txt": "aulora_add_library(aulora_other)"}
        self.assertEqual(self.check(files)[0], 0)
        files["model/CMakeLists.txt"] = model.replace("aulora_other", "Qt6::Core")
        self.assertEqual(self.check(files)[0], 1)

    def test_circle(self):
        model = "aulora_add_library(aulora_model SOURCES Store.h LINK aulora_app Qt6::Core)"
        status, said = self.check({"model/CMakeLists.txt": model})
        self.assertEqual(status, 1)
        self.assertIn("model: aulora_model needs aulora_app needs aulora_ui needs aulora_model\n",
                      said)

    def test_two_headers_of_one_name(self):
        self.assertEqual(self.check({"ui/Store.h": ""})[0], 1)

    def test_our_own_sources(self):
        run = subprocess.run([sys.executable, CHECK], capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stdout)

    def test_nothing_to_check(self):
        with tempfile.TemporaryDirectory() as folder:
            run = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True)
            self.assertEqual((run.returncode, run.stdout),
                             (1, f"{folder}: there is no library here\n"))


if __name__ == "__main__":
    unittest.main()
