"""Puts mechanical faults into the driver, one at a time, and looks which of them no test notices. See tools/mutants.sh."""
import argparse
import hashlib
import re
import sys
import tomllib
from collections import Counter
from pathlib import Path

from faults import mutants_of
from tree import FOLDERS, Tree

ROOT = Path(__file__).resolve().parents[2]
SCRATCH = ROOT / 'out' / 'mutants'
SOURCES = re.compile(r'\.(cpp|h|hlsl)$')
# The bodies of platform/ that stand in for Windows natively, and the program that compiles shaders, are not shipped.
NOT_SHIPPED = re.compile(r'_posix\.cpp$|/compiler/')
WINDOWS_ONLY = re.compile(r'_(win32|d3d11)\.|\.hlsl$|^driver/driver_factory')


def folder_of(file):
    return max((folder for folder in FOLDERS if file.startswith(folder + '/')), key=len)


def draw(root, windows, seed):
    """One mutant of each line, in an order that depends on the seed and the lines alone: when other lines change, these
    come as before."""
    def order(*parts):
        return hashlib.sha256('\0'.join([str(seed), *parts]).encode()).hexdigest()

    lines, seen = {}, Counter()
    for path in sorted(path for folder in FOLDERS for path in (root / folder).rglob('*')):
        file = str(path.relative_to(root))
        if not SOURCES.search(file) or NOT_SHIPPED.search(file) or windows != bool(WINDOWS_ONLY.search(file)):
            continue
        for mutant in mutants_of(file, path.read_text()):
            lines.setdefault((file, mutant.line), []).append(mutant)
    drawn = []
    for mutants in lines.values():
        text = mutants[0].file, mutants[0].was
        seen[text] += 1  # the same line may stand in several places of a file
        drawn.append((order(*text, str(seen[text])), min(mutants, key=lambda mutant: order(*mutant.name))))
    return [mutant for _, mutant in sorted(drawn, key=lambda pair: pair[0])]


class Results:
    """One line a mutant; what stands there is not run again."""

    def __init__(self, path):
        self.path, self.lines = path, {}
        if path.exists():
            for line in path.read_text().splitlines():
                status, place, was, becomes, by = line.split('\t')
                self.lines[place, was, becomes] = status, by

    @staticmethod
    def _key(mutant):
        return f'{mutant.file}:{mutant.line}', mutant.was, mutant.becomes

    def get(self, mutant):
        return self.lines.get(self._key(mutant))

    def put(self, mutant, status, by):
        self.lines[self._key(mutant)] = status, by
        with self.path.open('a') as file:
            file.write('\t'.join([status, *self._key(mutant), by]) + '\n')

    def forget(self, status):
        self.lines = {key: value for key, value in self.lines.items() if value[0] != status}
        self.path.write_text(''.join('\t'.join([s, *key, by]) + '\n' for key, (s, by) in self.lines.items()))


def equivalents():
    table = tomllib.loads((Path(__file__).parent / 'equivalent.toml').read_text())
    return {(entry['file'], entry['was'], entry['becomes']): entry['why'] for entry in table.get('equivalent', [])}


def judge(tree, mutant):
    """What becomes of one mutant in one tree: a status, and who caught it."""
    if not tree.make(tree.driver):
        return 'does not compile', ''
    for test in tree.seeing(folder_of(mutant.file)):
        if not tree.make(test.name):
            return 'caught', f'{test.name} does not compile'
        outcome = tree.run(test)
        # On a busy machine a test may fail by chance, twice hardly; nor does one take four times as long and half a minute.
        if not outcome.passed and (outcome.hung or not tree.run(test).passed):
            return 'caught', f'{tree.name} {test.name} {outcome.what}'
    return 'survived', ''


def try_out(trees, mutant):
    status, by = 'survived', ''
    for tree in trees:
        with tree.with_fault(mutant):
            status, by = judge(tree, mutant)
        if status != 'survived':
            break
    by = ' '.join(by.split())
    print(f'{status}: {mutant.file}:{mutant.line}  {mutant.becomes}  {by and f"({by})"}', flush=True)
    return status, by


def trees_of(windows):
    """The quickest first: most mutants are caught without sanitizers, and most of the time goes to the compiler. What they
    let pass is tried with them, and then under Wine."""
    native, wine = SCRATCH / 'native', SCRATCH / 'windows'
    under_wine = Tree(wine, 'mingw-release', 'mingw-release', [], 'driver_ombrel', {'windows', 'gpu'},
                      '^(install|shipped)_')
    if windows:
        return [under_wine]
    quick = ['-DCMAKE_CXX_FLAGS_DEBUG=-O0', '-DOMBREL_SANITIZE=undefined']
    return [Tree(native, 'host-quick', 'host-asan', quick, 'ombrel_provider', {'native'}, '^fuzz_'),
            Tree(native, 'host-asan', 'host-asan', [], 'ombrel_provider', {'native'}, '^$'),
            Tree(native, 'host-tsan', 'host-tsan', [], 'ombrel_provider', {'native'}, '^fuzz_'), under_wine]


def report(drawn, results, known):
    """The survivors, then the counts. Whether each survivor is explained."""
    counts = {'caught': 0, 'survived': 0, 'equivalent': 0}
    print()
    for mutant in drawn:
        status = 'equivalent' if mutant.name in known else results.get(mutant)[0]
        counts[status] += 1
        if status != 'caught':
            print(f'{status}: {mutant.file}:{mutant.line}\n    {mutant.was}\n    {mutant.becomes}')
        if status == 'equivalent':
            print(f'    because {known[mutant.name]}')
    print(f'{len(drawn)} mutants: ' + ', '.join(f'{count} {status}' for status, count in counts.items()))
    return counts['survived'] == 0


def options():
    parser = argparse.ArgumentParser(prog='tools/mutants.sh', description=__doc__)
    parser.add_argument('--seed', type=int, default=1, help='another seed draws other mutants (default: 1)')
    parser.add_argument('--count', type=int, default=60, help='how many mutants that compile (default: 60)')
    parser.add_argument('--windows', action='store_true', help='those of what only Windows builds, tested under Wine')
    parser.add_argument('--again', action='store_true', help='try once more those that survived')
    parser.add_argument('--list', action='store_true', help='print what would be drawn, and run nothing')
    return parser.parse_args()


def main():
    chosen = options()
    if chosen.list:
        for mutant in draw(ROOT, chosen.windows, chosen.seed)[:chosen.count]:
            print(f'{mutant.file}:{mutant.line}\t{mutant.was}\t{mutant.becomes}')
        return True
    SCRATCH.mkdir(parents=True, exist_ok=True)
    results = Results(SCRATCH / f'{"windows" if chosen.windows else "native"}-seed{chosen.seed}.tsv')
    if chosen.again:
        results.forget('survived')
    known, trees, counted = equivalents(), trees_of(chosen.windows), []
    for mutant in draw(ROOT, chosen.windows, chosen.seed):
        if len(counted) == chosen.count:
            break
        if mutant.name not in known and results.get(mutant) is None:
            results.put(mutant, *try_out(trees, mutant))
        if mutant.name in known or results.get(mutant)[0] != 'does not compile':
            counted.append(mutant)
    return report(counted, results, known)


if __name__ == '__main__':
    sys.exit(0 if main() else 1)
