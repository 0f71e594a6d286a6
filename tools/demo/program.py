"""The running program as the driver sees it: process, accessibility tree, counters, window."""

import json
import os
import re
import subprocess
import time
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

BUS_NAME = "com.teskara.CorvellanBram"
BUS_PATH = "/com/teskara/CorvellanBram"


class NotThere(Exception):
    """Something that had to appear did not."""


def wait_for(what, seconds, ask, every=0.1):
    """What `ask` gives as soon as that is true; `what` names it where it never becomes so."""
    deadline = time.monotonic() + seconds
    while True:
        answer = ask()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise NotThere(f"{what} did not appear within {seconds} s")
        time.sleep(every)


def act(widget):
    """Presses it. Tabs and rows name another action first, which gives them the keyboard."""
    action = widget.get_action_iface()
    names = [action.get_action_name(index) for index in range(action.get_n_actions())]
    return action.do_action(names.index("Press") if "Press" in names else 0)


class Program:
    def __init__(self, command, log):
        self._log = open(log, "wb")
        # Qt leaves accessibility off when this is set, and finds the bus through the session anyway.
        environment = {name: value for name, value in os.environ.items() if name != "AT_SPI_BUS_ADDRESS"}
        self.process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=self._log, stderr=subprocess.STDOUT, env=environment
        )
        self.pid = self.process.pid

    def is_running(self):
        return self.process.poll() is None

    def end(self):
        if self.is_running():
            self.process.terminate()
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
        self.process.wait()
        self._log.close()

    # --- What it costs ---

    @staticmethod
    def cpu_of(pid):
        """Seconds of processor time so far."""
        fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    @staticmethod
    def pss_of(pid):
        rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
        return int(re.search(r"^Pss:\s+(\d+) kB", rollup, re.MULTILINE)[1]) / 1024

    def cpu_seconds(self):
        return self.cpu_of(self.pid)

    def pss_mb(self):
        return self.pss_of(self.pid)

    # --- What it counts ---

    def counters(self):
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        answer = bus.call_sync(
            BUS_NAME, BUS_PATH, BUS_NAME, "diagnostics", None, GLib.VariantType("(s)"), Gio.DBusCallFlags.NONE, 5000
        )
        return json.loads(answer.unpack()[0])

    def counters_or_none(self):
        try:
            return self.counters()
        except GLib.Error:
            return None

    # --- What it shows ---

    def _application(self):
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child and child.get_process_id() == self.pid:
                    return child
            except GLib.Error:
                continue
        return None

    def widgets(self, everywhere=False):
        """Every accessible object with a name that is on screen, from the window down; where it is asked for
        `everywhere` also those that are scrolled out of sight or hidden, which look alike from here."""
        application = self._application()
        waiting = [application] if application else []
        while waiting:
            widget = waiting.pop()
            try:
                widget.clear_cache()
                for index in reversed(range(widget.get_child_count())):
                    child = widget.get_child_at_index(index)
                    if child:
                        waiting.append(child)
                if widget.get_name() and (everywhere or widget.get_state_set().contains(Atspi.StateType.SHOWING)):
                    yield widget
            except GLib.Error:
                # The tree changes while it is walked.
                continue

    def names(self):
        return [widget.get_name() for widget in self.widgets()]

    def button(self, name):
        for widget in self.widgets():
            if widget.get_name() == name and widget.get_role() == Atspi.Role.PUSH_BUTTON:
                return widget
        return None

    def control(self, name):
        """Whatever can be pressed: a button, a tab, a row. A screen can have its tab's name, and can't."""
        for widget in self.widgets():
            action = widget.get_action_iface() if widget.get_name() == name else None
            if action and action.get_n_actions() > 0:
                return widget
        return None

    def press(self, name, seconds=20):
        if not act(wait_for(f'the control "{name}"', seconds, lambda: self.control(name), every=0.2)):
            raise NotThere(f'the control "{name}" refused to be pressed')

    def key(self, name):
        """Presses a key in its window, whichever has the keyboard."""
        window = self.window()
        if window is None:
            raise NotThere("a window for the keys")
        subprocess.run(["xdotool", "key", "--window", window, name], check=True, timeout=10)

    def window(self):
        """The id of its largest visible window, or none."""
        search = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(self.pid)], capture_output=True, text=True, timeout=10
        )
        largest = (0, None)
        for window in search.stdout.split():
            shape = subprocess.run(
                ["xdotool", "getwindowgeometry", "--shell", window], capture_output=True, text=True, timeout=10
            )
            values = dict(line.split("=", 1) for line in shape.stdout.splitlines() if "=" in line)
            area = int(values.get("WIDTH", 0)) * int(values.get("HEIGHT", 0))
            largest = max(largest, (area, window), key=lambda entry: entry[0])
        return largest[1]

    def screenshot(self, path, whole_screen):
        """Of its window, or of the whole screen where that is the driver's own. False if neither went."""
        target = self.window() or ("root" if whole_screen else None)
        if target is None:
            return False
        shot = subprocess.run(["import", "-window", target, str(path)], capture_output=True, timeout=30)
        return shot.returncode == 0 and path.exists()
