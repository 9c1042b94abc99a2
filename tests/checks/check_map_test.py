"""Shows that check_map.py finds each kind of breach, and finds none in a tree that has none."""
import tempfile
import unittest
from pathlib import Path

from check_map import breaches


class CheckMapTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write("CMakeLists.txt", "foreach(folder platform driver/context link devices driver)\n")
        self.write("platform/CMakeLists.txt", "ombrel_add_library(ombrel_platform SOURCES clock.cpp)\n")
        self.link("driver/context", "context", "DEPENDS ombrel_openvr ombrel_platform")
        self.write("driver/context/include/context/log.h", "#include <openvr_driver.h>\n#include \"platform/clock.h\"\n")
        self.link("link", "link", "PRIVATE_DEPENDS ombrel_platform")
        self.write("link/core.cpp", '#include "link/core.h"\n#include "platform/clock.h"\n#include "local.h"\n')
        self.link("devices", "devices", "DEPENDS ombrel_link")
        self.write("devices/include/devices/pad.h", '#include "link/core.h"\n')
        self.link("driver", "provider", "DEPENDS ombrel_devices")
        self.write("driver/provider.h", '#include "devices/pad.h"\n')

    def write(self, path, text):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text)

    def link(self, folder, name, links):
        self.write(f"{folder}/CMakeLists.txt", f"ombrel_add_library(ombrel_{name} SOURCES a.cpp {links})\n")

    def expect(self, *lines):
        self.assertEqual(list(breaches(self.root)), list(lines))

    def test_a_true_map(self):
        self.expect()

    def test_a_link_to_a_folder_that_is_not_included(self):
        self.link("devices", "devices", "DEPENDS ombrel_link ombrel_platform")
        self.expect("devices links platform and includes nothing of it")

    def test_an_included_folder_that_is_not_linked(self):
        self.write("devices/pad.cpp", '#include "context/log.h"\n')
        self.expect("devices/pad.cpp: includes context, which devices does not link as PRIVATE")

    def test_a_link_that_only_sources_need(self):
        self.link("link", "link", "DEPENDS ombrel_platform")
        self.expect("link/core.cpp: includes platform, which link does not link as PRIVATE")

    def test_a_private_link_that_a_public_header_needs(self):
        self.link("devices", "devices", "PRIVATE_DEPENDS ombrel_link")
        self.expect("devices/include/devices/pad.h: includes link, which devices does not link as PUBLIC")

    def test_a_folder_that_links_a_later_one(self):
        self.link("link", "link", "DEPENDS ombrel_devices PRIVATE_DEPENDS ombrel_platform")
        self.write("link/include/link/core.h", '#  include "devices/pad.h"\n')
        self.expect("link links devices, which comes after it")

    def test_a_driver_that_includes_the_bench(self):
        self.write("driver/provider.cpp", '#include "companion/wire.h"\n')
        self.expect("driver/provider.cpp: includes companion, which driver does not link as PRIVATE")

    def test_the_interface_header_counts(self):
        self.write("link/openvr.cpp", "#include <openvr_driver.h>\n")
        self.expect("link/openvr.cpp: includes ombrel_openvr, which link does not link as PRIVATE")

    def test_what_is_linked_for_one_system_alone(self):
        self.write("link/CMakeLists.txt", "ombrel_add_library(ombrel_link SOURCES a.cpp)\nif(WIN32)  # there alone\n"
                   "target_link_libraries(ombrel_link PRIVATE ombrel_platform d3d11)\nendif()\n")
        self.expect()


if __name__ == "__main__":
    unittest.main()
