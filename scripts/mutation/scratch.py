# SPDX-License-Identifier: Apache-2.0
"""A scratch copy of the last commit with a build of its own, in which faults are tried."""
import ctypes
import json
import math
import os
import pathlib
import resource
import shutil
import signal
import subprocess

# Seconds that a program may take when it waits for what never comes. One that runs on and on is
# told by the processor's time, which a busy machine does not change.
WAITING_LIMIT = 900

# Bytes that a program may map: a fault that allocates without end is to fail early.
MEMORY_LIMIT = 8 << 30

PR_SET_PDEATHSIG = 1


class Program:
    """A test program of the build: how ctest starts it, how long it computes without a fault."""

    def __init__(self, name, command, properties):
        self.name = name
        self.command = command
        self.folder = properties.get("WORKING_DIRECTORY")
        self.environment = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        self.seconds = 0.0

    @property
    def limit(self):
        """Seconds of the processor that a process of the program may take."""
        return 10 + 8 * math.ceil(self.seconds)


class Scratch:
    def __init__(self, root, number):
        self.folder = root / "build" / "mutate" / str(number)
        self.source = self.folder / "source"
        self.build = self.folder / "build"
        self.temp = self.folder / "tmp"
        self.root = root

    def prepare(self):
        """Checks the last commit out, and configures as the preset release does."""
        self.folder.mkdir(parents=True, exist_ok=True)
        commit = git(self.root, "rev-parse", "HEAD")
        if not (self.source / ".git").exists():
            git(self.root, "worktree", "prune")
            git(self.root, "worktree", "add", "--detach", str(self.source), commit)
        git(self.source, "checkout", "--detach", "--force", commit)
        # Scratch copies share objects through ccache, if there is one, but no precompiled header.
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        self.run_tool(["cmake", "--preset", "release", "-B", str(self.build),
                       "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON", *launcher])

    def run_tool(self, command):
        done = subprocess.run(command, cwd=self.source, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            end = "\n".join(done.stdout.splitlines()[-40:])
            raise SystemExit(f"mutate: {' '.join(command)} failed:\n{end}")
        return done.stdout

    def compile_all(self):
        self.run_tool(["ninja", "-C", str(self.build)])

    def compiles(self, target):
        return subprocess.run(["ninja", "-C", str(self.build), target], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0

    def programs(self):
        """The test programs that are built from the plug-in or open it, in the order of ctest."""
        listing = json.loads(self.run_tool(["ctest", "--test-dir", str(self.build),
                                            "--show-only=json-v1"]))
        found = {}
        for test in listing["tests"]:
            path = pathlib.Path(test["command"][0])
            if path.parent != self.build / "bin" or path.name in found:
                continue
            arguments = [text for text in test["command"][1:] if not text.startswith("--gtest")]
            properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
            inputs = self.run_tool(["ninja", "-C", str(self.build), "-t", "inputs",
                                    f"bin/{path.name}"])
            if f"{self.source}/avi/" in inputs:
                found[path.name] = Program(path.name, [str(path), *arguments], properties)
        return list(found.values())

    def run(self, program, limit=resource.RLIM_INFINITY):
        """None when the program passes, otherwise how it failed."""
        shutil.rmtree(self.temp, ignore_errors=True)
        self.temp.mkdir()
        log = self.folder / "output.txt"
        with open(log, "wb") as output:
            process = subprocess.Popen(
                program.command, cwd=program.folder, stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT, start_new_session=True,
                preexec_fn=lambda: prepare_process(limit),
                env={**os.environ, **program.environment, "TMPDIR": str(self.temp),
                     "GTEST_FAIL_FAST": "1"})
            try:
                status = process.wait(WAITING_LIMIT)
            except subprocess.TimeoutExpired:
                status = -signal.SIGXCPU
            end_session(process)
        if status == 0:
            return None
        return "does not end" if status == -signal.SIGXCPU else failure_in(log, status)

    def measure(self, programs):
        """How much of the processor's time each program takes; all have to pass."""
        for program in programs:
            start = spent()
            failure = self.run(program)
            if failure:
                raise SystemExit(f"mutate: without a fault {program.name} {failure}: "
                                 f"see {self.folder}/output.txt")
            program.seconds = spent() - start


def git(folder, *arguments):
    return subprocess.run(["git", "-C", str(folder), *arguments], text=True, check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout.strip()


def spent():
    """Seconds of the processor that the programs started so far have taken."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def prepare_process(seconds):
    """Of a program that is about to start: limited, ended with this script, with the signals of a
    program in the foreground, which `&` and nohup have ignored."""
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, resource.RLIM_INFINITY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    for number in (signal.SIGINT, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


def end_session(process):
    """Ends a program and what it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def failure_in(log, status):
    """The first test that failed or was running when the program ended."""
    running = ""
    for line in log.read_text(encoding="utf-8", errors="replace").splitlines():
        if line.startswith("[  FAILED  ] "):
            return f"fails in {line.split()[3].rstrip(',')}"
        if line.startswith("[ RUN      ] "):
            running = f" in {line.split()[3]}"
    return f"ends with status {status}{running}"
