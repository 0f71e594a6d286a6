"""Plays a coached call in real time and judges it.

Both voices of a call script are synthesised; the salesperson is played into the default source, the
customer into the default output. The program is driven through its accessibility interface, and what
arrived at the end of every path is compared with what was played. Expects private surroundings: see
play.sh, which brings them up.
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
import voices
from program import NotThere, Program, wait_for

PORTS = (3001, 3002, 3003)
SPEAKERS = {"mic": "Salesperson", "system": "Customer"}
# From the moment the program listens until the first word may come.
LEAD_SECONDS = 1.0
# The provider waits for two seconds of silence, and the coach for nothing.
LAST_LINE_SECONDS = 12


def say(text):
    print(text, flush=True)


def port_is_open(port):
    with socket.socket() as probe:
        probe.settimeout(1)
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Demo:
    def __init__(self, options):
        self.options = options
        self.output = Path(options.output).resolve()
        self.programs = Path(options.bin).resolve()
        self.home = Path(os.environ["HOME"])
        self.sandbox = None
        self.program = None
        self.players = []
        self.screenshots = []
        self.pss = []

    # --- The call ---

    def run(self):
        self.prepare_output()
        self.prepare_script()
        try:
            self.start_sandbox()
            self.start_program()
            self.hold_call()
            return self.report()
        finally:
            self.end()

    def prepare_output(self):
        self.output.mkdir(parents=True, exist_ok=True)
        for name in judgement.OUTPUT_FILES:
            for path in self.output.glob(name):
                shutil.rmtree(path) if path.is_dir() else path.unlink()

    def prepare_script(self):
        say("==> Synthesising both voices")
        sandbox = str(self.programs / "corvellan-sandbox")
        self.lines, spoken_by = voices.load_script(sandbox, self.options.script)
        voices.speak(self.lines, spoken_by, self.output)
        moved = voices.lay_out(self.lines)
        self.tracks, self.seconds = voices.write_tracks(self.lines, self.output)
        voices.write_lengths(self.lines, self.output / "lengths.json")
        say(f"    {len(self.lines)} lines, {self.seconds:.0f} s" + (f", {moved} begin later than written" if moved else ""))

    def start_sandbox(self):
        for port in PORTS:
            if port_is_open(port):
                raise NotThere(f"a free port {port} (is another sandbox running?)")
        say("==> Starting the sandbox")
        self.received = self.output / "received"
        self.received.mkdir()
        command = [self.programs / "corvellan-sandbox", "--script", self.options.script]
        command += ["--lengths", self.output / "lengths.json", "--keep-audio", self.received]
        self.sandbox = Program([str(part) for part in command], self.output / "sandbox.log")
        log = self.output / "sandbox.log"
        wait_for("the sandbox's word that it is ready", 20, lambda: self.alive(self.sandbox) and "\nready\n" in log.read_text())

    def start_program(self):
        say("==> Starting the program")
        settings = self.home / ".config/corvellan/bram.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text("[General]\nserverMode=local\nonboardingCompleted=true\n")
        self.program = Program([str(self.programs / "corvellan-bram-sandbox")], self.output / "program.log")
        wait_for("the program's window", 30, lambda: self.alive(self.program) and self.program.button("Start Coaching"))
        self.start_counters = wait_for("the program on the bus", 10, self.program.counters_or_none)
        self.pss_idle = self.program.pss_mb()
        self.take_screenshot("1-idle")

    def hold_call(self):
        say('==> Pressing "Start Coaching"')
        self.program.press("Start Coaching")
        wait_for("the debug line that the pipeline listens", 20, lambda: "Pipeline ready" in self.debug_log())
        wait_for('the button "End Session"', 10, lambda: self.program.button("End Session"))
        self.take_screenshot("2-listening")
        time.sleep(LEAD_SECONDS)

        say(f"==> Playing the call in real time: {self.seconds:.0f} s")
        devices = {"mic": "micfeed", "system": "spk"}
        began = time.monotonic()
        cpu = self.program.cpu_seconds()
        for side in voices.SIDES:
            command = ["paplay", "-d", devices[side], str(self.tracks[side])]
            self.players.append(subprocess.Popen(command, stdin=subprocess.DEVNULL))
        self.follow_call(began)
        self.cpu_percent = 100 * (self.program.cpu_seconds() - cpu) / (time.monotonic() - began)
        for player in self.players:
            if player.wait(30) != 0:
                raise NotThere("a voice that could be played to its end")

        finished = wait_for_quietly(LAST_LINE_SECONDS, lambda: self.heard_lines() >= len(self.lines))
        if not finished:
            say(f"    only {self.heard_lines()} of {len(self.lines)} utterances have arrived")
        # The tip on the last one has its own way to go.
        time.sleep(0.5)
        self.take_screenshot("6-last-tip")
        self.shown = self.program.names()
        say('==> Pressing "End Session"')
        self.program.press("End Session")
        wait_for_quietly(10, lambda: (self.program.counters_or_none() or {}).get("records_stored", 0) >= 1)
        self.take_screenshot("7-ended")
        self.counters = self.program.counters()
        with urllib.request.urlopen("http://127.0.0.1:3001/sandbox/audio", timeout=10) as answer:
            self.provider = json.load(answer)

    def follow_call(self, began):
        """Tells what is said while it plays, takes the screenshots, and looks at the memory."""
        events = [(line.end, "line", line) for line in self.lines]
        events += [(self.seconds * part, "look", name) for part, name in ((0.3, "3-early"), (0.6, "4-middle"), (0.9, "5-late"))]
        for moment, kind, what in [*sorted(events, key=lambda event: event[0]), (self.seconds, "end", None)]:
            self.sleep_until(began + moment)
            if kind == "line":
                say(f"    {int(moment) // 60}:{int(moment) % 60:02}  {SPEAKERS[what.side]}: {what.text}")
            elif kind == "look":
                self.take_screenshot(what)
                self.pss.append(self.program.pss_mb())

    def sleep_until(self, moment):
        while (rest := moment - time.monotonic()) > 0:
            self.alive(self.program)
            self.alive(self.sandbox)
            time.sleep(min(rest, 1.0))

    def heard_lines(self):
        counters = self.program.counters_or_none()
        return counters["mic"]["utterances"] + counters["system"]["utterances"] if counters else 0

    def alive(self, process):
        if not process.is_running():
            name = "sandbox" if process is self.sandbox else "program"
            raise NotThere(f"a running {name} (it ended with {process.process.returncode}; see {name}.log)")
        return True

    def debug_log(self):
        path = self.home / "corvellan-debug.log"
        return path.read_text(errors="replace") if path.exists() else ""

    def session_id(self):
        """Of the call just held. Other programs of this machine may have found the sandbox too."""
        found = re.search(r"SessionStarted id=(\S+)", self.debug_log())
        return found[1] if found else "no-session"

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
        log = self.home / "corvellan-debug.log"
        if log.exists():
            shutil.copy(log, self.output / "debug.log")
        evidence = judgement.Evidence(
            lines=self.lines,
            record=self.newest_record(),
            counters=self.counters,
            received=self.received / self.session_id(),
            shown=self.shown,
        )
        report, failures = judgement.judge(evidence)
        report["cpu_percent_of_core"] = round(self.cpu_percent, 2)
        report["pss_mb"] = round(max(self.pss), 1)
        report["pss_idle_mb"] = round(self.pss_idle, 1)
        # What the sandbox found wrong with the program's own frames.
        refused = (self.output / "sandbox.log").read_text(errors="replace").count("refused a message")
        own = [connection for connection in self.provider if connection["session_id"] == self.session_id()]
        report["frames_refused"] = refused + sum(connection["faults"] for connection in own)
        report["screenshots"] = self.screenshots
        report["failures"] = failures
        (self.output / "report.json").write_text(json.dumps(report, indent=2, ensure_ascii=False) + "\n")
        say("")
        say(judgement.summary(report))
        say(f"Look at {self.output}: report.json, {', '.join(self.screenshots)}, debug.log, sandbox.log,")
        say("program.log, played-*.wav and received/*/*.wav")
        return 1 if failures else 0

    def newest_record(self):
        store = self.home / ".local/share/corvellan/sessions.sqlite"
        if not store.exists():
            return None
        with sqlite3.connect(f"file:{store}?mode=ro", uri=True) as database:
            database.row_factory = sqlite3.Row
            rows = database.execute("SELECT * FROM SessionRecord").fetchall()
        return dict(rows[0]) | {"records": len(rows)} if rows else None

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


def main():
    parser = argparse.ArgumentParser(prog="demo.py", description=__doc__.splitlines()[0])
    parser.add_argument("--bin", required=True, help="the folder of the built programs")
    parser.add_argument("--output", required=True, help="the folder for the report and all that belongs to it")
    parser.add_argument("--script", default="discovery-call", help="a call script: a file, or the name of a shipped one")
    parser.add_argument("--own-display", action="store_true", help="the display shows nothing else")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    demo = Demo(options)
    try:
        return demo.run()
    except KeyboardInterrupt:
        return 130
    except NotThere as failure:
        say(f"FAILED: {failure}")
        say(f"Look at {demo.output}: program.log, sandbox.log, and what else is there")
        keep_debug_log(demo)
        return 1


def keep_debug_log(demo):
    log = demo.home / "corvellan-debug.log"
    if log.exists():
        shutil.copy(log, demo.output / "debug.log")


if __name__ == "__main__":
    sys.exit(main())
