"""Shows that check_pages.py finds each kind of breach, and finds none in pages that are true."""
import tempfile
import unittest
from pathlib import Path

from check_pages import FOLDERS, breaches, definitions

SOURCE = """
namespace ombrel {
class Gate : public Door {
 public:
  Gate() = default;
  void Open() override { open_ = true; }
  void Close();  // Gate::Shut { }
  OMBREL_RETURNS_STRUCT(vr::DriverPose_t, GetPose, pose_.Load())
  struct Pass {
    void Show();
  };
  bool open_{false};
};
enum class Kind { kWide };
// Wide, as in compatibility.md, C1 and
// C2.
int WidthOf(Kind kind) { return Text("{"); }
void Gate::Pass::Show() { if (open_) { Close(); } }
}
"""
ROW = "| {} | Wide. | `{}` | Nobody. | {} |\n"


class CheckPagesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name in (*FOLDERS, "docs", "tests"):
            (self.root / name).mkdir()
        (self.root / "link/gate.h").write_text(SOURCE)
        (self.root / "tests/gate_test.cpp").write_text("TEST(Gate, Opens) {\nTEST_P(GateTest, Closes) {\n")
        (self.root / "docs/architecture.md").write_text("From `Gate::Open` to `WidthOf()`, `std::mutex` and `Gate`.\n")
        self.rows(ROW.format("C1", "Gate::Open", "`Gate.Opens`, `GateTest.Closes`"), ROW.format("C2", "WidthOf()", "none"))

    def rows(self, *rows):
        (self.root / "docs/compatibility.md").write_text("".join(rows))

    def expect(self, *lines):
        self.assertEqual([line.split(": ", 1)[1] for line in breaches(self.root)], list(lines))

    def test_what_counts_as_defined(self):
        self.assertEqual(set(definitions(SOURCE)), {"Gate::Open", "Gate::GetPose", "WidthOf", "Gate::Pass::Show"})

    def test_pages_that_are_true(self):
        self.expect()

    def test_a_function_that_is_invented_or_only_declared(self):
        (self.root / "docs/architecture.md").write_text("`Gate::Slam`, `Gate::Close`, `HeightOf()`\n")
        self.expect(*(f"{name} is no function of the driver" for name in ("Gate::Slam", "Gate::Close", "HeightOf")))

    def test_a_row_whose_test_is_not_there(self):
        self.rows(ROW.format("C1", "Gate::Open", "`Gate.Shuts`"), ROW.format("C2", "Gate::Open", "nobody"))
        self.expect("C1 names Gate.Shuts, which is no test", "C2 names no test")

    def test_a_row_out_of_order_or_without_a_function(self):
        self.rows(ROW.format("C2", "WidthOf()", "none"), ROW.format("C1", "the gate", "none"))
        self.expect("C2 stands where C1 should", "C1 stands where C2 should", "C1 names no function")

    def test_rows_and_citations_that_do_not_meet(self):
        self.rows(ROW.format("C1", "Gate::Open", "none"))
        self.expect("C2 is cited and not there")
        (self.root / "link/gate.h").write_text(SOURCE.replace("C1 and\n// C2", "C1"))
        self.rows(ROW.format("C1", "Gate::Open", "none"), ROW.format("C2", "WidthOf()", "none"))
        self.expect("C2 is not cited by the code")


if __name__ == "__main__":
    unittest.main()
