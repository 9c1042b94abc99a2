"""How counts of several builds become one: python3 tools/coverage_test.py"""
import unittest

from coverage import File, page, ranges


def line(number, count, *branches):
    """Branches are counts; a call that may throw is followed by 'throw'."""
    ways = [{'count': 0 if way == 'throw' else way, 'throw': way == 'throw'} for way in branches]
    return {'line_number': number, 'count': count, 'branches': ways}


def file_of(*lines):
    file = File()
    for entry in lines:
        file.add(entry)
    return file


class Coverage(unittest.TestCase):
    def test_a_line_that_any_build_ran_is_covered(self):
        self.assertEqual(file_of(line(3, 0), line(3, 1), line(4, 0)).line_counts(), (1, 2))

    def test_each_branch_is_covered_by_any_build(self):
        self.assertEqual(file_of(line(3, 1, 1, 0), line(3, 1, 0, 0)).branch_counts(), (1, 2))
        self.assertEqual(file_of(line(3, 1, 1, 0), line(3, 1, 0, 2)).branch_counts(), (2, 2))

    def test_builds_that_disagree_about_the_branches_count_both(self):
        self.assertEqual(file_of(line(3, 1, 1, 1), line(3, 1, 1, 0, 0, 0)).branch_counts(), (3, 6))

    def test_a_call_that_may_throw_is_no_branch(self):
        self.assertEqual(file_of(line(3, 1, 1, 'throw', 1, 0)).branch_counts(), (1, 2))
        self.assertEqual(file_of(line(3, 1, 1, 'throw')).branch_counts(), (0, 0))

    def test_a_line_that_never_ran_is_not_listed_twice(self):
        file = file_of(line(3, 0, 0, 0), line(4, 1, 1, 0))
        self.assertEqual((file.lines_not_run(), file.lines_half_run()), ([3], [4]))

    def test_neighbouring_lines_are_one_entry(self):
        self.assertEqual(ranges([1, 3, 4, 5, 9]), '1, 3–5, 9')

    def test_a_folder_within_a_folder_is_counted_apart(self):
        files = {'driver/a.cpp': file_of(line(1, 1)), 'driver/context/b.cpp': file_of(line(1, 0))}
        rows = [row for row in page(files, {}) if row.startswith('| `driver') and '%' in row]
        self.assertEqual(rows, ['| `driver/context/` | 0 of 1 (0.0 %) | 0 of 0 |',
                                '| `driver/` | 1 of 1 (100.0 %) | 0 of 0 |'])

    def test_what_is_not_covered_may_have_a_reason(self):
        files = {name: file_of(line(1, 0), line(2, 1, 1, 0)) for name in ('link/a.cpp', 'link/b.cpp')}
        rows = list(page(files, {'link/a.cpp': 'it ends the process'}))[-2:]
        self.assertEqual(rows, ['| `link/a.cpp` | 1 | 2 | it ends the process |', '| `link/b.cpp` | 1 | 2 |  |'])


if __name__ == '__main__':
    unittest.main()
