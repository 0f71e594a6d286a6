"""Uses the program as a person does on a desktop with two screens: tray, shortcut, second start, faces, ends.

Expects the private surroundings that `run` brings up.
"""

import argparse
import re
import signal
import sqlite3
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from walk import KEPT_AFTER_SECONDS, Walk, Wrong, expect, out, wait_for, walk  # noqa: E402
from standins import Notifications, Tray, pump  # noqa: E402

from gi.repository import Gio  # noqa: E402

TITLE = "Corvellan Bram"
MENU = [
    "Show Main Window", None, "Start Session", "Start Training", "End Session", "Toggle Stealth", None,
    "Check for Updates...", None, "Quit Corvellan",
]
LEFT, RIGHT = (0, 1280), (1280, 2560)


def wait(what, ask, seconds=15):
    """As wait_for, while the stand-ins answer."""

    def step():
        pump()
        return ask()

    return wait_for(what, seconds, step, every=0.05)


class Window:
    """The program's window as the window manager and every other program see it."""

    def __init__(self, number):
        self.number = number

    def shape(self):
        text = out("xwininfo", "-id", self.number)
        return tuple(
            int(re.search(rf"{name}:\s+(-?\d+)", text)[1])
            for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        )

    def size(self):
        return self.shape()[2:]

    def frame(self):
        """x, y, width, height with what the window manager puts round it."""
        x, y, width, height = self.shape()
        left, right, top, bottom = self.borders()
        return x - left, y - top, width + left + right, height + top + bottom

    def property(self, name):
        return out("xprop", "-id", self.number, name)

    def borders(self):
        found = re.search(r"= (\d+), (\d+), (\d+), (\d+)", self.property("_NET_FRAME_EXTENTS"))
        return tuple(int(value) for value in found.groups()) if found else (0, 0, 0, 0)

    def is_above(self):
        return "_NET_WM_STATE_ABOVE" in self.property("_NET_WM_STATE")

    def limits(self):
        """Smallest and largest size."""
        text = self.property("WM_NORMAL_HINTS")
        found = {
            kind: tuple(int(value) for value in re.search(rf"{kind} size: (\d+) by (\d+)", text).groups())
            for kind in ("minimum", "maximum")
        }
        return found["minimum"], found["maximum"]

    def centre(self):
        x, _, width, _ = self.frame()
        return x + width / 2


class Desktop(Walk):
    def __init__(self, options):
        super().__init__(options)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.tray = Tray(self.bus)
        self.notifications = Notifications(self.bus)
        self.starts = 0

    # --- Steps that others are made of ---

    def a_user_of_the_local_server(self):
        self.preset("serverMode=local", "onboardingCompleted=true")

    def start_sandbox(self):
        self.start_sandbox_with("--update", "9.9")

    def start_program(self):
        self.starts += 1
        self.tray.items.clear()
        self.launch(self.starts)
        window = self.visible_window()
        # Visible before the window manager has put a frame round it.
        wait("the window's frame", lambda: window.borders()[2] > 0)
        wait("the program on the bus", self.program.counters_or_none)
        return window

    def visible_window(self):
        return Window(wait("the window", self.window_or_none))

    def window_or_none(self):
        found = out("xdotool", "search", "--onlyvisible", "--pid", str(self.program.pid), check=False).split()
        for number in found:
            if out("xdotool", "getwindowname", number, check=False).strip() == TITLE:
                return number
        return None

    def close_window(self):
        # What the close button sends.
        out("wmctrl", "-i", "-c", self.visible_window().number)
        wait("the window's end", lambda: not self.window_or_none())

    def second_start(self):
        done = subprocess.run([str(self.programs / "corvellan-bram-sandbox")], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=20)
        expect("the second start's exit status", done.returncode, 0)

    def wait_for_call(self):
        wait("the call face", lambda: self.visible_window().size() == (700, 350))
        return self.visible_window()

    def wait_for_idle(self):
        wait("the idle face", lambda: self.visible_window().size() == (680, 520))
        return self.visible_window()

    def wait_until_listening(self):
        wait("the pipeline", lambda: "Pipeline ready" in self.debug_log())

    def focused(self):
        return out("xdotool", "getwindowfocus", check=False).strip()

    def press_hotkey(self):
        out("xdotool", "key", "--clearmodifiers", "super+shift+j")

    def item(self):
        return wait("the status item", lambda: self.tray.items)[-1]

    def wait_for_end(self, seconds=5):
        try:
            return self.program.process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise Wrong(f"the program did not end within {seconds} s") from None

    # --- What has to hold ---

    def idle_face_on_the_pointers_screen(self):
        out("xdotool", "mousemove", "1900", "500")
        window = self.start_program()
        expect("the idle size", window.size(), (680, 520))
        expect("the idle limits", window.limits(), ((520, 400), (900, 700)))
        expect("an idle window above others", window.is_above(), False)
        if not RIGHT[0] <= window.shape()[0] < RIGHT[1]:
            raise Wrong(f"the window is not on the pointer's screen: {window.shape()}")
        # Placed before the window manager's frame is known.
        if abs(window.centre() - 1920) > 2:
            raise Wrong(f"its middle is {window.centre()} instead of 1920")
        expect("its class", re.findall(r'"([^"]*)"', window.property("WM_CLASS"))[-1], TITLE)

    def tray_shows_the_fixed_menu(self):
        item = self.item()
        expect("the item's title", self.tray.property_of(item, "Title"), TITLE)
        rows = self.tray.menu(item)
        expect("the menu", [title for _, title, _ in rows], MENU)
        expect("rows that can't be pressed", [title for _, title, enabled in rows if title and not enabled], [])

    def close_hides_and_the_menu_brings_it_back(self):
        before = self.visible_window().number
        self.close_window()
        expect("the program after its window was closed", self.program.is_running(), True)
        self.tray.press(self.item(), "Show Main Window")
        self.visible_window()
        expect("the size of the window that came back", self.wait_for_idle().size(), (680, 520))
        wait("its content", lambda: self.program.button("Start Coaching"))
        return before

    def second_start_brings_the_first_to_the_front(self):
        self.close_window()
        self.second_start()
        window = self.visible_window()
        wait("the keyboard", lambda: self.focused() == window.number)
        expect("the first instance", self.program.is_running(), True)

    def it_follows_the_pointer_when_shown_and_not_otherwise(self):
        out("xdotool", "mousemove", "300", "300")
        self.second_start()
        wait("the window on the left screen", lambda: self.visible_window().centre() == 640)
        out("xdotool", "windowmove", self.visible_window().number, "60", "80")
        wait("its new place", lambda: self.visible_window().shape()[0] < 120)
        there = self.visible_window().shape()
        self.second_start()
        time.sleep(0.3)
        expect("its place on the pointer's own screen", self.visible_window().shape(), there)

    def the_menu_starts_a_session_in_the_call_face(self):
        before = self.visible_window().frame()
        self.tray.press(self.item(), "Start Session")
        window = self.wait_for_call()
        wait("a window above others", lambda: self.visible_window().is_above())
        expect("its limits", window.limits(), ((700, 350), (700, 350)))
        wait("a window without a frame", lambda: self.visible_window().borders() == (0, 0, 0, 0))
        # It grew to the right and to the left; the screen's edge holds it.
        wait("its top edge", lambda: self.visible_window().shape()[1] == before[1])
        expect("its left edge", self.visible_window().shape()[0], max(0, round(before[0] + before[2] / 2 - 350)))
        self.wait_until_listening()

    def stealth_survives_the_face(self):
        self.tray.press(self.item(), "Toggle Stealth")
        self.tray.press(self.item(), "Toggle Stealth")
        expect("the program", self.program.is_running(), True)

    def the_call_is_long_enough_to_be_kept(self):
        time.sleep(KEPT_AFTER_SECONDS)

    def the_hotkey_ends_it_while_another_window_has_the_keyboard(self):
        with open(self.output / "xev.log", "w") as log:
            other = subprocess.Popen(["xev", "-geometry", "200x200+900+600", "-event", "keyboard"], stdout=log, stderr=log)
        try:
            number = wait("the other window", lambda: out("xdotool", "search", "--name", "Event Tester", check=False).strip())
            out("xdotool", "windowactivate", "--sync", number)
            wait("the other window's keyboard", lambda: self.focused() == number)
            self.press_hotkey()
            self.wait_for_idle()
            wait("the end", lambda: not self.visible_window().is_above())
            wait("the key in the other window", lambda: re.search(r"keysym 0x4a, J", (self.output / "xev.log").read_text()))

            self.press_hotkey()
            window = self.wait_for_call()
            wait("the keyboard for the panel", lambda: self.focused() == window.number)
            self.press_hotkey()
            self.wait_for_idle()
        finally:
            other.terminate()
            other.wait()

    def training_is_only_asked_for(self):
        self.tray.press(self.item(), "Start Training")
        time.sleep(0.3)
        expect("the face", self.visible_window().size(), (680, 520))

    def the_badge_tells_of_an_update(self):
        wait("the log's word of an update", lambda: "[Corvellan] Update available: " in self.log.read_text())

    def expect_records(self, number):
        store = self.home / ".local/share/corvellan/sessions.sqlite"
        with sqlite3.connect(f"file:{store}?mode=ro", uri=True) as database:
            expect("the store's own check", database.execute("pragma integrity_check").fetchone()[0], "ok")
            expect("records", database.execute("select count(*) from SessionRecord").fetchone()[0], number)

    def quit_by_the_menu(self):
        self.tray.press(self.item(), "Quit Corvellan")
        expect("the exit status", self.wait_for_end(), 0)
        self.expect_records(1)

    def sigterm_in_a_call_ends_it_promptly(self):
        self.start_program()
        self.press_hotkey()
        self.wait_for_call()
        asked = time.monotonic()
        self.program.process.send_signal(signal.SIGTERM)
        expect("the exit status", self.wait_for_end(), 0)
        print(f"    ended after {time.monotonic() - asked:.2f} s", flush=True)

    def a_killed_program_leaves_what_it_stored(self):
        self.start_program()
        self.press_hotkey()
        self.wait_for_call()
        self.program.process.send_signal(signal.SIGKILL)
        self.wait_for_end()
        self.expect_records(1)
        preferences = self.settings.read_text()
        if "serverMode=local" not in preferences or "hasRegisteredLoginItem=true" not in preferences:
            raise Wrong(f"the preferences: {preferences!r}")
        window = self.start_program()
        expect("the idle size after all that", window.size(), (680, 520))

    def starts_at_login(self):
        entry = self.home / ".config/autostart/com.teskara.CorvellanBram.desktop"
        text = entry.read_text()
        if str(self.programs / "corvellan-bram-sandbox") not in text:
            raise Wrong(f"the autostart entry: {text!r}")
        entry.unlink()
        self.program.end()
        self.start_program()
        expect("an autostart entry that the user has removed", entry.exists(), False)

    def steps(self):
        return [
            self.a_user_of_the_local_server,
            self.start_sandbox,
            self.idle_face_on_the_pointers_screen,
            self.the_badge_tells_of_an_update,
            self.tray_shows_the_fixed_menu,
            self.close_hides_and_the_menu_brings_it_back,
            self.second_start_brings_the_first_to_the_front,
            self.it_follows_the_pointer_when_shown_and_not_otherwise,
            self.training_is_only_asked_for,
            self.the_menu_starts_a_session_in_the_call_face,
            self.stealth_survives_the_face,
            self.the_call_is_long_enough_to_be_kept,
            self.the_hotkey_ends_it_while_another_window_has_the_keyboard,
            self.quit_by_the_menu,
            self.sigterm_in_a_call_ends_it_promptly,
            self.a_killed_program_leaves_what_it_stored,
            self.starts_at_login,
        ]


if __name__ == "__main__":
    sys.exit(walk(Desktop, argparse.ArgumentParser()))
