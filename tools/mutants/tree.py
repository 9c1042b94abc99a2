"""A scratch copy of the sources, its build, and the tests that can see a place of it."""
import contextlib
import fcntl
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

from faults import mutated

FOLDERS = ['platform', 'driver/context', 'link', 'shaders', 'render', 'devices', 'hmd', 'driver']
# A test that hangs is one that fails; one that is slow today is not.
LIMIT_FACTOR, LEAST_LIMIT_S = 4, 30
# The programs of a folder whose names do not begin with it, tried before those of the other folders.
NEAR = {
    'driver/context': r'context_', 'driver': r'provider_|driver_start|driver_session|abi_test',
    'shaders': r'layer_pictures|render_|driver_frames', 'render': r'render_|layer_pictures|driver_frame|driver_swap',
    'platform': r'platform_|driver_link|driver_session',
}


def copy_sources(scratch):
    """Makes scratch hold what the working tree holds; returns the files that were not the same."""
    root = Path(__file__).resolve().parents[2]
    listed = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard'], cwd=root, check=True, text=True,
                            capture_output=True).stdout.splitlines()
    wanted = {name for name in listed if (root / name).is_file()}
    present = {str(p.relative_to(scratch)) for p in scratch.rglob('*') if p.is_file() and 'third_party' not in p.parts}
    changed = [name for name in wanted
               if name not in present or (root / name).read_bytes() != (scratch / name).read_bytes()]
    for name in changed:
        (scratch / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(root / name, scratch / name)
        shutil.copymode(root / name, scratch / name)
    for name in present - wanted:
        (scratch / name).unlink()
    if not (scratch / 'third_party').exists():
        (scratch / 'third_party').symlink_to(root / 'third_party')
    return changed + sorted(present - wanted)


@dataclass
class Test:
    name: str
    command: list
    environment: dict
    inputs: list
    limit_s: float = 600.0  # until it is known how long the test takes

    def sees(self, folder):
        return any(path.startswith(folder + '/') for path in self.inputs)


@dataclass
class Outcome:
    passed: bool
    what: str
    seconds: float
    hung: bool = False


class Tree:
    """One build of the scratch sources. The driver is what the tests are built around."""

    def __init__(self, folder, name, preset, settings, driver, labels, left_out):
        self.folder, self.source, self.build = folder, folder / 'source', folder / name
        self.name, self.configure = name, ['--preset', preset, '-B', self.build, *settings]
        self.driver, self.labels, self.left_out = driver, labels, re.compile(left_out)
        self.tests = []

    @contextlib.contextmanager
    def with_fault(self, mutant):
        """No other run uses the folder meanwhile."""
        self.source.mkdir(parents=True, exist_ok=True)
        with (self.folder / 'lock').open('w') as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self._prepare()
            path = self.source / mutant.file
            text = path.read_text()
            path.write_text(mutated(text, mutant.fault))
            try:
                yield
            finally:
                path.write_text(text)

    def _prepare(self):
        """Once: builds what there is without a fault, and learns which tests pass and how long they take."""
        if self.tests:
            return
        if copy_sources(self.source):
            for times in self.folder.glob('*/times.json'):
                times.unlink()
        # Without warnings: a fault often leaves something unused, which is not what is asked here.
        subprocess.run(['cmake', *self.configure, '-DCMAKE_CXX_FLAGS=-w', '-Wno-dev', '--log-level=WARNING'],
                       cwd=self.source, check=True, stdout=subprocess.DEVNULL)
        if not self.make(*[test.name for test in self._list()]):
            raise SystemExit(f'does not build without a fault either: see {self.build}/make.log')
        tests = list(self._list())
        times = self.build / 'times.json'
        if not times.exists():
            times.write_text(json.dumps({test.name: self._time(test) for test in tests}))
        known = json.loads(times.read_text())
        self.tests = [test for test in tests if known[test.name] is not None]
        for test in self.tests:
            test.limit_s = LEAST_LIMIT_S + LIMIT_FACTOR * known[test.name]

    def _time(self, test):
        """How long a test takes, or None for one that fails already."""
        for outcome in (self.run(test) for _ in range(2)):
            if outcome.passed:
                print(f'  {self.name} {test.name}: {outcome.seconds:.1f} s', flush=True)
                return outcome.seconds
        print(f'  {self.name} {test.name} FAILS WITHOUT A FAULT ({outcome.what}): left out', flush=True)
        return None

    def _list(self):
        """The tests whose programs are built from the driver. Their commands are not known before they are built."""
        asked = {'cwd': self.build, 'check': True, 'text': True, 'capture_output': True}
        shown = json.loads(subprocess.run(['ctest', '--show-only=json-v1'], **asked).stdout)
        targets = re.findall(r'^([^/:]+):', subprocess.run(['ninja', '-t', 'targets', 'all'], **asked).stdout, re.M)
        for entry in shown['tests']:
            name, properties = entry['name'], {p['name']: p['value'] for p in entry['properties']}
            if not self.labels & set(properties.get('LABELS', [])) or name not in targets or self.left_out.search(name):
                continue
            inputs = subprocess.run(['ninja', '-t', 'inputs', name], **asked).stdout.splitlines()
            environment = dict(pair.split('=', 1) for pair in properties.get('ENVIRONMENT', []))
            test = Test(name, entry.get('command'), environment, inputs)
            if any(map(test.sees, FOLDERS)):
                yield test

    def make(self, *targets):
        """What make is asked for is built if need be; whether it could be."""
        done = subprocess.run(['cmake', '--build', self.build, '--target', *targets], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        (self.build / 'make.log').write_bytes(done.stdout)
        return done.returncode == 0

    def seeing(self, folder):
        """The tests that can see a folder: its own come first, then the quick ones."""
        near = re.compile(f'^({NEAR.get(folder, folder + "_")})')
        return sorted((test for test in self.tests if test.sees(folder)),
                      key=lambda test: (near.search(test.name) is None, test.limit_s))

    def run(self, test):
        begin = time.monotonic()
        environment = {**os.environ, 'GTEST_FAIL_FAST': '1', 'ASAN_OPTIONS': 'hard_rss_limit_mb=3000',
                       **test.environment}
        log, hung = self.build / 'test.log', False
        with log.open('wb') as output:
            process = subprocess.Popen(test.command, cwd=self.build, env=environment, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=subprocess.STDOUT, start_new_session=True,
                                       preexec_fn=_bounds)
            try:
                what = '' if process.wait(test.limit_s) == 0 else self._failure(log, process.returncode)
            except subprocess.TimeoutExpired:
                what, hung = f'no end after {test.limit_s:.0f} s', True
            self._end(process)
        return Outcome(what == '', what, time.monotonic() - begin, hung)

    @staticmethod
    def _failure(log, code):
        found = re.search(r'\[  FAILED  \] ([\w./]+)|(runtime error: .*)|SUMMARY: (.*)',
                          log.read_bytes().decode(errors='replace'))
        return ' '.join(filter(None, found.groups())) if found else f'ended with {code}'

    def _end(self, process):
        """The whole group, and what runs under Wine: a mutant may leave a companion behind."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        for prefix in self.build.glob('wine*/.made'):
            subprocess.run(['/usr/lib/wine/wineserver', '-k'], check=False, stderr=subprocess.DEVNULL,
                           env={**os.environ, 'WINEPREFIX': str(prefix.parent)})


def _bounds():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
