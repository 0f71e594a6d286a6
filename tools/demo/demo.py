"""What every demo needs: its output folder, the sandbox, the program, pictures, and the report that is judged.

Expects private surroundings: see play.sh, which brings them up.
"""

import argparse
import json
import os
import re
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import time
import urllib.request
from pathlib import Path

import judgement
from program import NotThere, Program, wait_for

PORTS = (3001, 3002, 3003)


def say(text):
    print(text, flush=True)


def port_is_open(port):
    with socket.socket() as probe:
        probe.settimeout(1)
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Demo:
    # The call script that is played where none is asked for: a file, or the name of a shipped one.
    script = None

    def __init__(self, options):
        self.options = options
        self.output = Path(options.output).resolve()
        self.programs = Path(options.bin).resolve()
        self.home = Path(os.environ["HOME"])
        self.received = self.output / "received"
        self.sandbox = None
        self.program = None
        self.players = []
        self.screenshots = []
        self.pss = []

    # --- What each demo adds ---

    def prepare_script(self):
        """Makes what is said, and the lengths that the sandbox is told in lengths.json."""
        raise NotImplementedError

    def sandbox_options(self):
        return []

    def hold(self):
        """Plays all of it, from `begin_measuring` to `end_measuring`, and ends the session."""
        raise NotImplementedError

    def judge(self):
        """The report, and one sentence for each thing that is not as it must be."""
        raise NotImplementedError

    def summary(self, report):
        """The report's main figures: rows of name and text."""
        raise NotImplementedError

    # --- From start to end ---

    def run(self):
        self.prepare_output()
        self.prepare_script()
        try:
            self.start_sandbox()
            self.start_program()
            self.hold()
            return self.report()
        finally:
            self.end()

    def prepare_output(self):
        self.output.mkdir(parents=True, exist_ok=True)
        for name in judgement.OUTPUT_FILES:
            for path in self.output.glob(name):
                shutil.rmtree(path) if path.is_dir() else path.unlink()

    def start_sandbox(self):
        for port in PORTS:
            if port_is_open(port):
                raise NotThere(f"a free port {port} (is another sandbox running?)")
        say("==> Starting the sandbox")
        self.received.mkdir()
        command = [self.programs / "corvellan-sandbox", "--script", self.options.script]
        command += ["--lengths", self.output / "lengths.json", "--keep-audio", self.received, *self.sandbox_options()]
        self.sandbox = Program([str(part) for part in command], self.output / "sandbox.log")
        wait_for("the sandbox's word that it is ready", 20,
                 lambda: self.alive(self.sandbox) and "\nready\n" in self.sandbox_log())

    def start_program(self):
        say("==> Starting the program")
        settings = self.home / ".config/corvellan/bram.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text("[General]\nserverMode=local\nonboardingCompleted=true\n")
        self.program = Program([str(self.programs / "corvellan-bram-sandbox")], self.output / "program.log")
        wait_for("the program's window", 30, lambda: self.alive(self.program) and self.program.button("Start Coaching"))
        wait_for("the program on the bus", 10, self.program.counters_or_none)
        self.pss_idle = self.program.pss_mb()
        self.take_screenshot("1-idle")

    def wait_for_pipeline(self):
        """The session runs, and the program listens."""
        wait_for("the debug line that the pipeline listens", 20, lambda: "Pipeline ready" in self.debug_log())
        wait_for('the button "End Session"', 10, lambda: self.program.button("End Session"))

    def begin_measuring(self):
        self.began = time.monotonic()
        self.cpu_at_begin = self.program.cpu_seconds()

    def end_measuring(self):
        self.cpu_percent = 100 * (self.program.cpu_seconds() - self.cpu_at_begin) / (time.monotonic() - self.began)

    def end_session(self, picture):
        say('==> Pressing "End Session"')
        self.program.press("End Session")
        wait_for_quietly(10, lambda: (self.program.counters_or_none() or {}).get("records_stored", 0) >= 1)
        self.take_screenshot(picture)
        self.counters = self.program.counters()
        with urllib.request.urlopen("http://127.0.0.1:3001/sandbox/audio", timeout=10) as answer:
            self.provider = json.load(answer)

    def play(self, device, track):
        """Starts to play it into the device; `finish_playing` waits for its end."""
        command = ["paplay", "-d", device, str(track)]
        self.players.append(subprocess.Popen(command, stdin=subprocess.DEVNULL))

    def finish_playing(self):
        for player in self.players:
            if player.wait(60) != 0:
                raise NotThere("a voice that could be played to its end")
        self.players.clear()

    def sleep_until(self, moment):
        while (rest := moment - time.monotonic()) > 0:
            self.alive(self.program)
            self.alive(self.sandbox)
            time.sleep(min(rest, 1.0))

    def alive(self, process):
        if not process.is_running():
            name = "sandbox" if process is self.sandbox else "program"
            raise NotThere(f"a running {name} (it ended with {process.process.returncode}; see {name}.log)")
        return True

    def debug_log(self):
        path = self.home / "corvellan-debug.log"
        return path.read_text(errors="replace") if path.exists() else ""

    def sandbox_log(self):
        return (self.output / "sandbox.log").read_text(errors="replace")

    def session_id(self):
        """Of the session just held. Other programs of this machine may have found the sandbox too."""
        found = re.search(r"SessionStarted id=(\S+)", self.debug_log())
        return found[1] if found else "no-session"

    def look(self, name):
        """Takes a picture, and looks at the memory."""
        self.take_screenshot(name)
        self.pss.append(self.program.pss_mb())

    def take_screenshot(self, name):
        path = self.output / f"{name}.png"
        if self.program.screenshot(path, self.options.own_display):
            self.screenshots.append(path.name)

    # --- Afterwards ---

    def report(self):
        self.program.end()
        # The socket's last bytes reach the file after the program has gone.
        time.sleep(0.5)
        self.sandbox.end()
        self.keep_debug_log()
        report, failures = self.judge()
        report["cpu_percent_of_core"] = round(self.cpu_percent, 2)
        report["pss_mb"] = round(max(self.pss), 1)
        report["pss_idle_mb"] = round(self.pss_idle, 1)
        # What the sandbox found wrong with the program's own frames.
        refused = self.sandbox_log().count("refused a message")
        own = [connection for connection in self.provider if connection["session_id"] == self.session_id()]
        report["frames_refused"] = refused + sum(connection["faults"] for connection in own)
        report["screenshots"] = self.screenshots
        report["failures"] = failures
        (self.output / "report.json").write_text(json.dumps(report, indent=2, ensure_ascii=False) + "\n")
        say("")
        say(judgement.verdict(self.summary(report), report))
        say(f"Look at {self.output}: report.json, {', '.join(self.screenshots)}, debug.log, sandbox.log,")
        say("program.log, the *.wav and received/*/*.wav")
        return 1 if failures else 0

    def newest_record(self):
        store = self.home / ".local/share/corvellan/sessions.sqlite"
        if not store.exists():
            return None
        with sqlite3.connect(f"file:{store}?mode=ro", uri=True) as database:
            database.row_factory = sqlite3.Row
            rows = database.execute("SELECT * FROM SessionRecord").fetchall()
        return dict(rows[0]) | {"records": len(rows)} if rows else None

    def keep_debug_log(self):
        log = self.home / "corvellan-debug.log"
        if log.exists():
            shutil.copy(log, self.output / "debug.log")

    def end(self):
        for player in self.players:
            if player.poll() is None:
                player.terminate()
                player.wait()
        for process in (self.program, self.sandbox):
            if process:
                process.end()


def wait_for_quietly(seconds, ask):
    try:
        return wait_for("it", seconds, ask, every=0.2)
    except NotThere:
        return False


def main(kind, title):
    """Runs a demo of that kind. Returns the exit status."""
    parser = argparse.ArgumentParser(description=title)
    parser.add_argument("--bin", required=True, help="the folder of the built programs")
    parser.add_argument("--output", required=True, help="the folder for the report and all that belongs to it")
    parser.add_argument("--script", default=kind.script, help="a call script: a file, or the name of a shipped one")
    parser.add_argument("--own-display", action="store_true", help="the display shows nothing else")
    demo = kind(parser.parse_args())
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        return demo.run()
    except KeyboardInterrupt:
        return 130
    except NotThere as failure:
        say(f"FAILED: {failure}")
        say(f"Look at {demo.output}: program.log, sandbox.log, and what else is there")
        demo.keep_debug_log()
        return 1
