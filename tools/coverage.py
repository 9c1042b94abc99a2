"""Merges what gcov tells of several builds into one page: coverage.py ROOT PAGE BUILD=GCOV...

A line is covered if any build ran it. Its branches are those of the machine code that the compiler made without
optimization; the same branch of several builds or of several instances of a template is one. Branches that only an
exception takes are left out.
"""
import itertools
import json
import subprocess
import sys
import tomllib
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

FOLDERS = ['platform', 'driver/context', 'link', 'shaders', 'render', 'devices', 'hmd', 'driver']


class File:
    def __init__(self):
        self.lines = defaultdict(int)     # how often each ran
        self.branches = {}                # (line, how many branches) -> how often each was taken

    def add(self, line):
        number = line['line_number']
        self.lines[number] += line['count']
        # A call that may throw has two ways on: to the next instruction, which comes first, and to the handler.
        ways = [*line['branches'], {'throw': False}]
        taken = [way['count'] for way, after in zip(ways, ways[1:]) if not way['throw'] and not after['throw']]
        if taken:
            key = number, len(taken)
            known = self.branches.get(key, [0] * len(taken))
            self.branches[key] = [a + b for a, b in zip(known, taken)]

    def line_counts(self):
        return sum(count > 0 for count in self.lines.values()), len(self.lines)

    def branch_counts(self):
        taken = [count for counts in self.branches.values() for count in counts]
        return sum(count > 0 for count in taken), len(taken)

    def lines_not_run(self):
        return sorted(number for number, count in self.lines.items() if count == 0)

    def lines_half_run(self):
        """Lines that ran, but not all their branches."""
        return sorted({line for (line, _), taken in self.branches.items() if 0 in taken and self.lines[line] > 0})


def read(build, gcov):
    """What gcov tells of each object file, including those that never ran."""
    def ask(notes):
        asked = [gcov, '--json-format', '--branch-probabilities', '--stdout', notes.name]
        told = subprocess.run(asked, cwd=notes.parent, check=True, capture_output=True, text=True).stdout
        return [json.loads(line) for line in told.splitlines() if line.startswith('{')]

    with ThreadPoolExecutor() as pool:
        for reports in pool.map(ask, sorted(Path(build).rglob('*.gcno'))):
            for report in reports:
                yield from report['files']


def merged(root, builds):
    files = defaultdict(File)
    for build, gcov in builds:
        for entry in read(build, gcov):
            path = Path(entry['file'])
            if path.is_relative_to(root) and folder_of(str(path.relative_to(root))):
                for line in entry['lines']:
                    files[str(path.relative_to(root))].add(line)
    return files


def folder_of(file):
    return max((folder for folder in FOLDERS if file.startswith(folder + '/')), key=len, default=None)


def share(counts):
    covered, total = counts
    return f'{covered} of {total}' + (f' ({100 * covered / total:.1f} %)' if total else '')


def ranges(numbers):
    """1, 2, 3, 7 as 1–3, 7."""
    runs = []
    for _, run in itertools.groupby(enumerate(numbers), key=lambda pair: pair[1] - pair[0]):
        run = [number for _, number in run]
        runs.append(str(run[0]) if len(run) == 1 else f'{run[0]}–{run[-1]}')
    return ', '.join(runs)


def total(files, count):
    return tuple(map(sum, zip(*(count(file) for file in files)))) or (0, 0)


def row(name, files):
    return f'| {name} | {share(total(files, File.line_counts))} | {share(total(files, File.branch_counts))} |'


def page(files, reasons):
    yield '# Coverage'
    yield ''
    yield ("Lines and branches of the driver's folders that the tests run, natively and under Wine, as"
           ' `tools/coverage.sh` counted them. Branches that only an exception takes are left out. Nothing in the sources'
           ' is marked as excluded.')
    yield ''
    yield '| folder | lines | branches |'
    yield '| --- | --- | --- |'
    for folder in FOLDERS:
        inside = [file for name, file in files.items() if folder_of(name) == folder]
        if inside:
            yield row(f'`{folder}/`', inside)
    yield row('all', files.values())
    yield ''
    yield '## What is not covered'
    yield ''
    yield '| file | lines that never ran | lines of which a branch was never taken | probable reason |'
    yield '| --- | --- | --- | --- |'
    for name in sorted(files):
        not_run, half_run = files[name].lines_not_run(), files[name].lines_half_run()
        if not_run or half_run:
            yield f'| `{name}` | {ranges(not_run)} | {ranges(half_run)} | {reasons.get(name, "")} |'


def main():
    root, output, *builds = sys.argv[1:]
    files = merged(Path(root).resolve(), [build.split('=') for build in builds])
    reasons = tomllib.loads((Path(__file__).parent / 'coverage.toml').read_text())
    Path(output).write_text('\n'.join(page(files, reasons)) + '\n')
    print('lines', share(total(files.values(), File.line_counts)))
    print('branches', share(total(files.values(), File.branch_counts)))


if __name__ == '__main__':
    main()
