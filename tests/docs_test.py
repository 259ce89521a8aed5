#!/usr/bin/env python3
"""The README and the pages of docs/ as a newcomer meets them: from a fresh clone.

The pages are read from a copy of the files git knows, which is what a clone has (an example
file that was never committed is not there), with build/ leading to the build under test.

- Every code fence opens and closes on a line of its own: a broken fence swallows the text
  after it.
- Every link and picture that points into the repository leads to a file.
- Every `sh` block runs in a shell of its own at the top of the copy, command by command: each
  must exit 0 and say nothing on stderr but the watch's "watch running" line. A command that
  keeps a window open or follows the log (quillset-info, `log -f`) must still be running after a
  few seconds. A `make` line is checked with `make -n`, since running it would build; a `ctest`
  line is not run, since it would write over the log of the test run this test is part of.
- Every `console` block's commands (its `$ ` lines) print what follows them, stdout and stderr
  together: a line ending in "..." stands for any line that starts with what comes before; the
  letters XXXXXX for any six letters or digits.
- A block that exports QUILLSET_STATE=/tmp/quillset-watch-XXXXXX, as a second terminal does
  with what `make run` printed, talks to a watch this test starts for the page: the
  application headless, driven by nothing. A command that needs a display gets an Xvfb.

Usage: docs_test.py SOURCE_ROOT BUILD_DIR
"""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PLACEHOLDER = "/tmp/quillset-watch-XXXXXX"
# Commands that run until they are stopped, and the seconds they must last.
LASTING = re.compile(r"quillset-info|\blog\b.*\s-f\b")
LASTING_SECONDS = 4
TIMEOUT_SECONDS = 120
MAKE = re.compile(r"^((?:\w+=\S*\s+)*)make\b(.*)$", re.S)
CTEST = re.compile(r"(^|[;&|(]\s*)ctest\b")
FENCE = re.compile(r"^( *)```([\w+-]*)\s*$")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)(?:\s+\"[^\"]*\")?\)")
# What a command may say on stderr: the watch's line, and the toolkit's animation timer when a
# busy machine wakes it late (the README tells of it).
QUIET_STDERR = re.compile(r"^(quillset-sim: watch running; QUILLSET_STATE=\S+|"
                          r"ERROR: ecore_animator thread - .* should have slept .* but took .*)$")


def fresh_copy(source, dest):
    """The files git knows (as they are in the work tree), as a clone would have them."""
    listed = subprocess.run(["git", "-C", source, "ls-files", "-z"], capture_output=True)
    if listed.returncode != 0:
        sys.exit("docs_test: %s is not a git checkout: %s" % (source, listed.stderr.decode()))
    for name in filter(None, listed.stdout.decode().split("\0")):
        src = os.path.join(source, name)
        if not os.path.lexists(src):
            continue  # deleted, not yet committed
        target = os.path.join(dest, name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if os.path.islink(src):
            os.symlink(os.readlink(src), target)
        else:
            shutil.copy2(src, target)


def parse(text):
    """The page's code blocks as (kind, first line number, lines), and the fence errors."""
    blocks, errors, open_block = [], [], None
    for number, line in enumerate(text.split("\n"), 1):
        if "```" not in line:
            if open_block:
                indent = open_block[3]
                open_block[2].append(line[indent:] if line[:indent].strip() == "" else line)
            continue
        fence = FENCE.match(line)
        if open_block is None and fence:
            open_block = (fence.group(2), number + 1, [], len(fence.group(1)))
        elif open_block is not None and line.strip() == "```":
            blocks.append(open_block[:3])
            open_block = None
        else:
            errors.append("line %d: a broken code fence: %s" % (number, line.strip()))
    if open_block:
        errors.append("line %d: a code block that is never closed" % (open_block[1] - 1))
    return blocks, errors


def commands(lines, first):
    """Shell commands with their line numbers; a line ending in \\ or | goes on."""
    out, current, start = [], "", None
    for offset, line in enumerate(lines):
        if not current and (not line.strip() or line.lstrip().startswith("#")):
            continue
        if not current:
            start = first + offset
        current += line + "\n"
        code = line.split(" #")[0].rstrip()
        if not (code.endswith("\\") or code.endswith("|")):
            out.append((start, current.rstrip("\n")))
            current = ""
    if current:
        out.append((start, current.rstrip("\n")))
    return out


def expected_pattern(lines):
    parts = []
    for line in lines:
        if line.endswith("..."):
            pattern = re.escape(line[:-3]) + ".*"
        else:
            pattern = re.escape(line)
        parts.append(pattern.replace("XXXXXX", "[A-Za-z0-9]{6}"))
    return re.compile("\n".join(parts) + "\n?", re.S) if parts else re.compile("")


class Display:
    """An Xvfb of this test's own, started on first use."""

    def __init__(self):
        self.process = None
        self.name = None

    def get(self):
        if self.process is None:
            read, write = os.pipe()
            self.process = subprocess.Popen(
                ["Xvfb", "-displayfd", str(write), "-screen", "0", "640x480x24", "-nolisten",
                 "tcp"], pass_fds=(write,), stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL)
            os.close(write)
            with os.fdopen(read) as f:
                self.name = ":" + f.readline().strip()
        return self.name

    def stop(self):
        if self.process:
            self.process.terminate()
            self.process.wait()


class Watch:
    """A running watch for the second-terminal blocks of one page."""

    def __init__(self, bin_dir, state, env):
        self.state = state
        self.err = open(state + ".err", "w+")
        self.process = subprocess.Popen(
            [os.path.join(bin_dir, "quillset-sim"), "run", "--fresh", "--state", state, "--",
             "quillset-drive"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=self.err, env=env, text=True)
        # Up once the application has drawn its first screen.
        self.process.stdin.write("dump\n")
        self.process.stdin.flush()
        self.ready = self.process.stdout.readline().startswith("{")

    def stop(self):
        self.process.stdin.close()
        try:
            self.process.wait(timeout=30)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.err.close()


class Page:
    def __init__(self, test, path):
        self.test, self.path, self.watch = test, path, None
        self.name = os.path.relpath(path, test.clone)

    def fail(self, line, what):
        self.test.failures.append("%s:%d: %s" % (self.name, line, what))

    def check(self):
        with open(self.path, encoding="utf-8") as f:
            text = f.read()
        blocks, errors = parse(text)
        for error in errors:
            self.test.failures.append("%s: %s" % (self.name, error))
        for number, line in enumerate(text.split("\n"), 1):
            for target in LINK.findall(line):
                if re.match(r"^(https?:|mailto:|#)", target):
                    continue
                where = os.path.normpath(os.path.join(os.path.dirname(self.path),
                                                      target.split("#")[0]))
                if not os.path.exists(where):
                    self.fail(number, "a link to %s, which a clone does not have" % target)
        try:
            for kind, first, lines in blocks:
                if kind in ("sh", "console"):
                    self.run_block(kind, first, lines)
        finally:
            if self.watch:
                self.watch.stop()

    def environment(self, block_text):
        env = dict(self.test.env)
        if PLACEHOLDER in block_text and self.watch is None:
            state = os.path.join(self.test.tmp, "watch-%d" % len(self.test.watches))
            self.test.watches.append(state)
            self.watch = Watch(self.test.bin, state, self.test.env)
            if not self.watch.ready:
                self.watch.err.seek(0)
                raise RuntimeError("the page's watch did not start: " + self.watch.err.read())
        if "--window" in block_text or "quillset-info" in block_text:
            env["DISPLAY"] = self.test.display.get()
        return env

    def run_block(self, kind, first, lines):
        text = "\n".join(lines)
        env = self.environment(text)
        if self.watch:
            text = text.replace(PLACEHOLDER, self.watch.state)
            lines = text.split("\n")
        shell = subprocess.Popen(["bash", "--norc", "--noprofile"], stdin=subprocess.PIPE,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                 cwd=self.test.clone, env=env, text=True)
        try:
            if kind == "sh":
                for line, command in commands(lines, first):
                    self.run_sh(shell, line, command)
            else:
                self.run_console(shell, first, lines)
        finally:
            shell.stdin.close()
            shell.wait()

    def in_shell(self, shell, command, output, merged):
        """Runs command in the block's shell; its exit status."""
        self.test.ran += 1
        status = os.path.join(self.test.tmp, "status")
        if os.path.exists(status):
            os.unlink(status)
        redirect = "2>&1" if merged else "2>%s.err" % output
        shell.stdin.write("{ %s\n} </dev/null >%s %s; echo $? >%s\n"
                          % (command, output, redirect, status))
        shell.stdin.flush()
        deadline = time.monotonic() + TIMEOUT_SECONDS
        while time.monotonic() < deadline:
            if os.path.exists(status):
                with open(status) as f:
                    text = f.read()
                if text.endswith("\n"):
                    return int(text)
            if shell.poll() is not None:
                return -1
            time.sleep(0.05)
        shell.send_signal(signal.SIGKILL)
        return -2

    def run_sh(self, shell, line, command):
        code = command.split(" #")[0].strip()
        make = MAKE.match(code)
        if CTEST.search(code):
            self.test.skipped += 1
            return
        if make:
            self.test.makes += 1
            command = "%smake -n%s" % (make.group(1), make.group(2))
        elif LASTING.search(code):
            # Still running after a while, and gone when asked to stop.
            command = "timeout -k 10 %d %s; [ $? -eq 124 ]" % (LASTING_SECONDS, code)
        output = os.path.join(self.test.tmp, "out")
        status = self.in_shell(shell, command, output, merged=False)
        with open(output + ".err", errors="replace") as f:
            said = [l for l in f.read().splitlines() if not QUIET_STDERR.match(l)]
        if status != 0:
            self.fail(line, "`%s` exited with %d: %s" % (code, status, " / ".join(said)[:600]))
        elif said:
            self.fail(line, "`%s` said: %s" % (code, " / ".join(said)[:600]))

    def run_console(self, shell, first, lines):
        steps, current = [], None
        for offset, line in enumerate(lines):
            if line.startswith("$ "):
                current = (first + offset, line[2:], [])
                steps.append(current)
            elif current:
                current[2].append(line)
        for line, command, expected in steps:
            self.test.consoles += 1
            output = os.path.join(self.test.tmp, "out")
            self.in_shell(shell, command, output, merged=True)
            with open(output, errors="replace") as f:
                shown = f.read()
            while expected and not expected[-1].strip():
                expected.pop()
            if not expected_pattern(expected).fullmatch(shown):
                self.fail(line, "`%s` printed:\n%s\ninstead of:\n%s"
                          % (command, shown.rstrip(), "\n".join(expected)))


class DocsTest:
    def __init__(self, source, build):
        self.tmp = tempfile.mkdtemp(prefix="quillset-docs-")
        self.clone = os.path.join(self.tmp, "clone")
        self.bin = os.path.join(os.path.abspath(build), "bin")
        self.display = Display()
        self.failures, self.watches = [], []
        self.ran = self.makes = self.consoles = self.skipped = 0
        os.makedirs(self.clone)
        fresh_copy(source, self.clone)
        os.symlink(os.path.abspath(build), os.path.join(self.clone, "build"))
        self.env = {k: v for k, v in os.environ.items()
                    if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QUILLSET_STATE",
                                 "DBUS_SYSTEM_BUS_ADDRESS", "QUILLSET_LOG_ECHO", "MAKEFLAGS",
                                 "MAKELEVEL", "MFLAGS")}

    def run(self):
        pages = [os.path.join(self.clone, "README.md")]
        docs = os.path.join(self.clone, "docs")
        pages += sorted(os.path.join(docs, f) for f in os.listdir(docs) if f.endswith(".md"))
        try:
            for path in pages:
                try:
                    Page(self, path).check()
                except RuntimeError as error:
                    self.failures.append("%s: %s" % (os.path.relpath(path, self.clone), error))
        finally:
            self.display.stop()
        for failure in self.failures:
            print("FAIL " + failure)
        print("docs: %d pages, %d commands run (%d make lines with make -n, %d outputs "
              "compared), %d ctest lines not run, %d failed"
              % (len(pages), self.ran, self.makes, self.consoles, self.skipped,
                 len(self.failures)))
        if not self.failures:
            shutil.rmtree(self.tmp, ignore_errors=True)
        else:
            print("the copy is kept in " + self.clone)
        return 1 if self.failures else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(DocsTest(sys.argv[1], sys.argv[2]).run())
