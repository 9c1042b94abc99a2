"""Runtime, driver and preview under Wine, as processes of a test."""
import os
import re
import signal
import subprocess
import time
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
PREFIX = os.environ["OMBREL_TEST_PREFIX"]
WINE = [SOURCES / "tools/wine.sh", "--prefix", PREFIX]
SHARING = [SOURCES / "tools/wine_sharing.sh", PREFIX, os.environ["OMBREL_TEST_SHARING"]]
WAIT_S = 60
# Without a thread per Direct3D device that spins while it waits: three of them starve a machine of two cores.
ENVIRONMENT = {**os.environ, "WINE_D3D_CONFIG": "csmt=0x0"}


class Program:
    """A Windows program whose output goes to a file; `command` is how it is started."""

    def __init__(self, log, *command):
        self.log = Path(log)
        self.output = open(self.log, "w")
        self.process = subprocess.Popen(list(map(str, command)), stdout=self.output, stderr=subprocess.STDOUT,
                                        env=ENVIRONMENT)

    def wait_for(self, pattern, seconds=WAIT_S):
        """The match of the pattern in what it printed."""
        deadline = time.monotonic() + seconds
        while not (found := re.search(pattern, self.log.read_text())):
            assert time.monotonic() < deadline and self.process.poll() is None, f"no '{pattern}':\n{self.log.read_text()}"
            time.sleep(0.05)
        return found

    def kill(self):
        """Ends it as a crash would."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        self.output.close()

    def resident_kilobytes(self):
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+) kB", status)[1])


class Session:
    """`folder` takes the logs; `settings` are the driver's."""

    def __init__(self, folder, settings=SOURCES / "tools/demo/direct.json"):
        self.folder = Path(folder)
        self.settings = settings
        self.port = 0
        self.start_companion()
        self.start_runtime()

    def start_companion(self):
        self.companion = Program(self.folder / "companion.log", *SHARING, os.environ["OMBREL_TEST_PREVIEW"],
                                 "--port", self.port)
        self.port = int(self.companion.wait_for(r"http://localhost:(\d+)/")[1])

    def start_runtime(self):
        self.runtime = Program(
            self.folder / "runtime.log", *WINE, os.environ["OMBREL_TEST_RUNTIME"],
            "--driver", os.environ["OMBREL_TEST_DRIVER"], "--settings", self.settings,
            "--haptics", SOURCES / "tools/demo/haptics.json", "--keep-devices", "--seconds", 1800)
        self.companion.wait_for("the driver is here")

    def end(self):
        self.runtime.kill()
        self.companion.kill()
