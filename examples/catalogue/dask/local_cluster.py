"""A scheduler and workers of Dask as processes of this machine, which log to files of a folder."""

import subprocess
import sys
import time
from collections.abc import Callable
from pathlib import Path


def wait_until(holds: Callable[[], object], what: str) -> None:
    end = time.monotonic() + 30
    while not holds():
        if time.monotonic() > end:
            sys.exit(f"error: waited in vain until {what}")
        time.sleep(0.002)


class LocalCluster:
    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.file = folder / "scheduler.json"
        self.processes: list[subprocess.Popen[bytes]] = []
        self.start("scheduler", "dask_scheduler", "--host", "127.0.0.1", "--port", "0", "--scheduler-file", str(self.file))
        wait_until(self.file.exists, "the scheduler listens")

    def start(self, name: str, program: str, *arguments: str) -> subprocess.Popen[bytes]:
        command = [sys.executable, "-m", f"distributed.cli.{program}", *arguments, "--no-dashboard"]
        process = subprocess.Popen(command, stderr=open(self.folder / f"{name}.log", "wb"), cwd=self.folder)
        self.processes.append(process)
        return process

    def start_worker(self, name: str) -> subprocess.Popen[bytes]:
        worker = ["--scheduler-file", str(self.file), "--name", name, "--nthreads", "1", "--no-nanny"]
        process = self.start(name, "dask_worker", *worker)
        wait_until(lambda: "Registered to" in self.log(name), f"{name} is registered")
        return process

    def log(self, name: str) -> str:
        return (self.folder / f"{name}.log").read_text()

    def end(self) -> None:
        for process in reversed(self.processes):
            process.kill()
            process.wait()
