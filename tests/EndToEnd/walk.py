"""What every walk through the program needs: the sandbox, the program, steps in their order, and what went wrong."""

import os
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/demo"))

from program import NotThere, Program, act, wait_for  # noqa: E402

# Shorter calls leave no record.
KEPT_AFTER_SECONDS = 11


class Wrong(Exception):
    """Something is not as it has to be."""


def expect(what, seen, wanted):
    if seen != wanted:
        raise Wrong(f"{what}: {seen!r} instead of {wanted!r}")


def out(*command, check=True):
    """What the command prints."""
    done = subprocess.run(command, capture_output=True, text=True, timeout=20)
    if check and done.returncode != 0:
        raise Wrong(f"{' '.join(command)}: {done.stderr.strip()}")
    return done.stdout


class Walk:
    def __init__(self, options):
        self.programs = Path(options.bin).resolve()
        self.output = Path(options.output).resolve()
        self.output.mkdir(parents=True, exist_ok=True)
        self.home = Path(os.environ["HOME"])
        self.settings = self.home / ".config/corvellan/bram.ini"
        self.log = self.output / "program.log"
        self.sandbox = self.program = None

    # --- Steps that others are made of ---

    def start_sandbox_with(self, *options):
        log = self.output / "sandbox.log"
        self.sandbox = Program([str(self.programs / "corvellan-sandbox"), *options], log)
        wait_for("the sandbox", 15, lambda: self.sandbox.is_running() and "\nready\n" in log.read_text())

    def preset(self, *settings):
        """What a user chose in an earlier life of the program."""
        self.settings.parent.mkdir(parents=True, exist_ok=True)
        self.settings.write_text("\n".join(("[General]", *settings, "")))

    def launch(self, number=1):
        self.log = self.output / f"program-{number}.log"
        self.program = Program([str(self.programs / "corvellan-bram-sandbox")], self.log)

    def wait_for_name(self, name, seconds=20):
        wait_for(f'"{name}" on the screen', seconds, lambda: name in self.program.names(), every=0.2)

    def widget(self, name):
        return next((widget for widget in self.program.widgets() if widget.get_name() == name), None)

    def press(self, name):
        """Whatever it is: a button, a tab, a row."""
        widget = wait_for(f'"{name}"', 20, lambda: self.widget(name), every=0.2)
        if not act(widget):
            raise NotThere(f'"{name}" refused to be pressed')

    def debug_log(self):
        path = self.home / "corvellan-debug.log"
        return path.read_text() if path.exists() else ""

    # --- The walk ---

    def steps(self):
        """In their order; each raises what is wrong."""
        raise NotImplementedError

    def run(self):
        try:
            for step in self.steps():
                print(f"==> {step.__name__.replace('_', ' ')}", flush=True)
                step()
            print("Everything holds", flush=True)
            return 0
        except (Wrong, NotThere) as problem:
            print(f"FAILED: {problem}", flush=True)
            self.tell_how_it_stands()
            return 1
        finally:
            for program in (self.program, self.sandbox):
                if program:
                    program.end()

    def tell_how_it_stands(self):
        if not self.program:
            return
        print("\n".join(self.program.names()), flush=True)
        print(self.log.read_text(errors="replace")[-4000:], flush=True)
        self.program.screenshot(self.output / "failed.png", whole_screen=True)


def walk(kind, arguments):
    """Runs a walk of that kind. Returns the exit status."""
    arguments.add_argument("--bin", required=True)
    arguments.add_argument("--output", required=True)
    return kind(arguments.parse_args()).run()
