"""Types at a shell's terminal, with the tab key, and looks at the words that a command gets.

try_completions.py SHELL DIRECTORY, the directory with the completions that write-manual has written.
"""

import os
import pty
import re
import select
import sys
import tempfile
import time

TIMEOUT_SECONDS = 60

VIEWER = "zeb-profile-viewer"
COMPARE = "zeb-profile-compare"
SAMPLE = "write-sample-log"

# What is typed behind the command, and the words that it is completed to.
CASES = [
    (VIEWER, "--rea\tmu\t", [["--reader", "murl"], ["--reader=murl"]]),
    (VIEWER, "--reader=gen\t", [["--reader=generic"]]),
    (VIEWER, "--reader ./li\t", [["--reader", "./libOwn.so"]]),
    (VIEWER, "--sort ti\t", [["--sort", "time"]]),
    (VIEWER, "--sort ru\t", [["--sort", "ru"]]),
    (VIEWER, "--csv ru\t", [["--csv", "run one.log"]]),
    (VIEWER, "--csv=ru\t", [["--csv=run one.log"]]),
    (VIEWER, "--level ru\t", [["--level", "ru"]]),
    (VIEWER, "--save-objects=ob\t", [["--save-objects=objects/"], ["--save-objects=objects"]]),
    (VIEWER, "--save-objects=ru\t", [["--save-objects=ru"]]),
    (VIEWER, "--raw --top ru\t", [["--raw", "--top", "run one.log"]]),
    (VIEWER, "run --int\t", [["run", "--internal"]]),
    (VIEWER, "--trust\tru\t", [["--trust-object-names", "run one.log"]]),
    (VIEWER, "-- --rea\t", [["--", "--rea"]]),
    (COMPARE, "--gate acc\t", [["--gate", "accelerator"]]),
    (COMPARE, "--base ru\tru\t --new=ru\t", [["--base", "run one.log", "run one.log", "--new=run one.log"]]),
    (SAMPLE, "--kind met\tru\t", [["--kind", "methods", "run one.log"]]),
    (SAMPLE, "--level=inte\t", [["--level=internal"]]),
    (SAMPLE, "--slower-l\tru\t", [["--slower-layer", "ru"], ["--slower-layer=ru"]]),
]

# How each shell is started and told to complete; the commands show their words.
SHELLS = {
    "bash": (
        ["--norc", "--noprofile", "-i"],
        "source {directory}/bash/{command}\n"
        "{command}() {{ printf 'WO''RDS'; printf '<%s>' \"$@\"; echo; }}\n",
    ),
    "zsh": (
        ["-f", "-i"],
        "fpath=({directory}/zsh $fpath); autoload -Uz compinit; compinit -u -D\n"
        "{command}() {{ printf 'WO''RDS'; printf '<%s>' \"$@\"; echo; }}\n",
    ),
    "fish": (
        ["--no-config", "-i"],
        "source {directory}/fish/{command}.fish\n"
        "function {command}; printf 'WO''RDS'; printf '<%s>' $argv; echo; end\n",
    ),
}


class Terminal:
    """A shell at a terminal, in a directory with some files."""

    def __init__(self, shell, directory):
        arguments, self.setup = SHELLS[os.path.basename(shell)]
        self.process, self.descriptor = pty.fork()
        if self.process == 0:
            os.chdir(directory)
            os.environ.update(TERM="xterm", HOME=directory, INPUTRC="/dev/null", PS1="> ", LC_ALL="C.UTF-8")
            os.execv(shell, [shell, *arguments])

    def type(self, text):
        os.write(self.descriptor, text.encode())

    def read_until(self, pattern):
        text = ""
        end = time.monotonic() + TIMEOUT_SECONDS
        while not (found := re.search(pattern, text)):
            ready, _, _ = select.select([self.descriptor], [], [], max(0.0, end - time.monotonic()))
            if not ready:
                raise TimeoutError(repr(text))
            text += os.read(self.descriptor, 65536).decode(errors="replace")
        return found

    def words(self, command, typed):
        self.type(f"{command} {typed}\n")
        return re.findall("<([^>]*)>", self.read_until(r"WORDS((<[^>\x1b]*>)+)\r?\n").group(1))

    def close(self):
        os.close(self.descriptor)
        os.waitpid(self.process, 0)


def main(shell, directory):
    failures = 0
    with tempfile.TemporaryDirectory() as place:
        os.mkdir(os.path.join(place, "objects"))
        for name in ("run one.log", "libOwn.so", "objects-of-a-file"):
            open(os.path.join(place, name), "w").close()
        terminal = Terminal(shell, place)
        for command in (VIEWER, COMPARE, SAMPLE):
            terminal.type(terminal.setup.format(command=command, directory=os.path.abspath(directory)))
        terminal.type("echo REA''DY\n")
        terminal.read_until("READY")
        for command, typed, expected in CASES:
            words = terminal.words(command, typed)
            if words not in expected:
                print(f"{command} {typed!r}: {words}, and not {expected[0]}")
                failures += 1
        terminal.close()
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
