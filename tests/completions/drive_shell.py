#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""drive_shell.py SHELL COMPLETIONS-DIR: types command lines and the Tab key into a real shell on a
terminal of its own, and compares the line that the shell then holds."""
import os
import pathlib
import pty
import select
import shutil
import signal
import sys
import tempfile
import time

SKIPPED = 77

# What is typed before Tab, and what the line must become.
CASES = (
    ("zvisp --getsc", "zvisp --getscalertype "),
    ("zvisp --dumpl", "zvisp --dumplen"),
    ("zvisp --fw pan", "zvisp --fw panel.bin "),
    ("zvisp --settingfile=oth", "zvisp --settingfile=other.ini "),
    ("zvisp --isp --fw7 pan", "zvisp --isp --fw7 panel.bin "),
    ("zvisp --vkfile ke", "zvisp --vkfile keys/"),
    ("zvisp --searchfw p", "zvisp --searchfw prefix "),
    ("zvisp --searchfw=u", "zvisp --searchfw=userdefined "),
    ("zvisp --edpmode r", "zvisp --edpmode readver "),
    ("zvisp --comm 15", "zvisp --comm 15 "),
    ("zvisp --bank pan", "zvisp --bank pan"),
    ("zvisp --slave pan", "zvisp --slave pan"),
    ("zvisp --edpmode pan", "zvisp --edpmode pan"),
    ("zvisp-simulator --getsc", "zvisp-simulator --getscalertype "),
    ("zvisp-line pl", "zvisp-line plan "),
    ("zvisp-line journal doc", "zvisp-line journal doctor "),
    ("zvisp-line run --readb", "zvisp-line run --readback "),
    ("zvisp-line check-plugin --with", "zvisp-line check-plugin --with-device "),
    ("zvisp-line check-plugin pan", "zvisp-line check-plugin panel.bin "),
    ("zvisp-line journal show --ru", "zvisp-line journal show --run "),
    ("zvisp-line readback --progress al", "zvisp-line readback --progress always "),
    ("zvisp-line plan --plugins ke", "zvisp-line plan --plugins keys/"),
    ("zvisp-line bat", "zvisp-line batch "),
    ("zvisp-line batch rel", "zvisp-line batch release.toml "),
    ("zvisp-line batch ke", "zvisp-line batch keys/"),
    ("zvisp-line batch release.toml --che", "zvisp-line batch release.toml --check "),
    ("zvisp-line batch release.toml --unit pan", "zvisp-line batch release.toml --unit pan"),
    ("zvisp-line batch release.toml --plugins ke", "zvisp-line batch release.toml --plugins keys/"),
    ("zvisp-line job in", "zvisp-line job init "),
    ("zvisp-line job init --out", "zvisp-line job init --output "),
    ("zvisp-line job init --output pan", "zvisp-line job init --output panel.bin "),
    ("zvisp-line job init -- --getsc", "zvisp-line job init -- --getscalertype "),
    ("zvisp-line run -- --getsc", "zvisp-line run -- --getscalertype "),
    ("zvisp-line run --json -- --isp --fw pan", "zvisp-line run --json -- --isp --fw panel.bin "),
)

# Each shell prints its line between angle brackets when it receives Ctrl-G.
SETUP = {
    "bash": (
        ["bash", "--norc", "--noprofile", "-i"],
        "bind 'set bell-style none'; bind 'set enable-bracketed-paste off'\n"
        "bind -x '\"\\C-g\": printf \"<%s>\" \"$READLINE_LINE\"'\n"
        "source {dir}/zvisp.bash; source {dir}/zvisp-line.bash\n"),
    "zsh": (
        ["zsh", "-f", "-i"],
        "unsetopt beep zle_bracketed_paste 2>/dev/null; fpath=({dir} $fpath)\n"
        "autoload -Uz compinit; compinit -u -D\n"
        "show() {{ printf '<%s>' \"$BUFFER\" }}; zle -N show; bindkey '^G' show\n"),
    "fish": (
        ["fish", "--no-config", "-i"],
        "function fish_greeting; end; bind \\cg 'printf \"<%s>\" (commandline | string collect)'\n"
        "source {dir}/zvisp.fish; source {dir}/zvisp-simulator.fish; "
        "source {dir}/zvisp-line.fish\n"),
}


class Shell:
    def __init__(self, command, home):
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.chdir(home)
            os.execvpe(command[0], command, {
                "PATH": os.environ["PATH"], "HOME": home, "TERM": "xterm", "LC_ALL": "C.UTF-8",
                "PS1": "", "XDG_CONFIG_HOME": home, "XDG_DATA_HOME": home})

    def send(self, text):
        os.write(self.terminal, text.encode())

    def read_until(self, end, seconds=20):
        text, deadline = "", time.monotonic() + seconds
        while end not in text:
            ready, _, _ = select.select([self.terminal], [], [], deadline - time.monotonic())
            if not ready:
                raise TimeoutError(f"waited for {end!r}, saw {text!r}")
            data = os.read(self.terminal, 4096).decode(errors="replace")
            if "\x1b[c" in data or "\x1b[0c" in data:  # the shell asks what terminal this is
                self.send("\x1b[?62c")
            text += data
        return text

    def end(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
        os.close(self.terminal)


def complete(shell, typed):
    """The line that the shell holds after the text and Tab."""
    shell.send(typed + "\t")
    time.sleep(0.4)
    shell.send("\a")
    seen = shell.read_until(">")
    line = seen[seen.rindex("<") + 1:seen.rindex(">")]
    shell.send("\x15")
    return line


def main(name, completions):
    command, setup = SETUP[name]
    if shutil.which(command[0]) is None:
        print(f"{name} is not installed")
        sys.exit(1 if os.environ.get("CI") else SKIPPED)
    with tempfile.TemporaryDirectory() as home:
        for file in ("panel.bin", "other.ini", "release.toml"):
            pathlib.Path(home, file).touch()
        pathlib.Path(home, "keys").mkdir()
        shell = Shell(command, home)
        try:
            shell.send(setup.format(dir=completions) + "echo rea''dy\n")
            shell.read_until("ready")
            time.sleep(0.4)
            failures = 0
            for typed, expected in CASES:
                line = complete(shell, typed)
                # zsh shows the "=" that may follow a name; the next blank removes it again.
                if line.rstrip(" =") != expected.rstrip():
                    print(f"{name}: {typed!r} became {line!r}, not {expected!r}")
                    failures += 1
        finally:
            shell.end()
    print(f"{name}: {len(CASES) - failures} of {len(CASES)} lines completed as expected")
    sys.exit(failures != 0)


main(*sys.argv[1:])
