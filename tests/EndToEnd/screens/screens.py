"""Walks through every screen as somebody does who has no mouse: by what a screen reader presses, and by keys.

From the first start to the second call and the next start, signed in at the sandbox's address that is not
this machine's own. Expects the private surroundings that `run` brings up.
"""

import argparse
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from signedin import USER, SignedIn  # noqa: E402
from walk import KEPT_AFTER_SECONDS, NotThere, Wrong, expect, out, wait_for, walk  # noqa: E402

import gi  # noqa: E402

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

COMPANY = "Halden Freight"
PREPARED = "Ask about hosting"
NOTE = "I sell telematics in Norway"
ONBOARDING = ("Welcome to Corvellan Bram", "How It Works", "Company Search & Calendar", "MEDDIC Scoring", "Permissions")


class Screens(SignedIn):
    # --- Steps that others are made of ---

    def focus(self, name):
        """Gives the keyboard to the control of that name."""
        widget = wait_for(f'"{name}"', 20, lambda: self.widget(name), every=0.2)
        if not Atspi.Component.grab_focus(widget):
            raise NotThere(f'"{name}" refused the keyboard')

    def widget(self, name):
        """One in sight if there is one, else one that may be scrolled out of it."""
        return super().widget(name) or next(
            (widget for widget in self.program.widgets(everywhere=True) if widget.get_name() == name), None)

    def press(self, name):
        """As a screen reader does it: it puts the keyboard there, which brings it into view, and presses."""
        self.focus(name)
        super().press(name)

    def keys(self, *names):
        out("xdotool", "key", "--clearmodifiers", *names)

    def type(self, text):
        out("xdotool", "type", "--delay", "20", text)

    def window_of(self, title):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], capture_output=True,
                               text=True, timeout=20)
        return found.stdout.split()[0] if found.stdout.split() else None

    def size(self):
        shape = out("xdotool", "getwindowgeometry", "--shell", self.program.window())
        values = dict(line.split("=", 1) for line in shape.splitlines())
        return int(values["WIDTH"]), int(values["HEIGHT"])

    def clipboard(self):
        return out("xclip", "-selection", "clipboard", "-out")

    def newest_call(self):
        token = self.tokens()["access_token"]
        number = self.ask_server("/calls", token)[0]["id"]
        return self.ask_server(f"/calls/{number}", token)

    def preferences(self):
        return self.settings.read_text() if self.settings.exists() else ""

    def expect_names(self, *names):
        shown = wait_for_names(self.program, names)
        if shown:
            raise Wrong(f"not on the screen: {', '.join(shown)}")

    def speak(self, text):
        """Into the microphone, to its end."""
        speech = self.output / "speech.wav"
        out("espeak-ng", "-v", "en-us", "-w", str(speech), text)
        out("paplay", "-d", "micfeed", str(speech))

    # --- What has to hold ---

    def a_first_start_asks_to_sign_in(self):
        self.launch()
        self.expect_names("Sign in to start coaching", "Sign In", "Login")

    def the_onboarding_leads_through_five_steps(self):
        for number, title in enumerate(ONBOARDING, start=1):
            self.expect_names(f"{number} of {len(ONBOARDING)}", title)
            self.take_picture(f"onboarding-{number}")
            if number == 2:
                self.press("Back")
                self.expect_names(f"1 of {len(ONBOARDING)}")
                self.press("Next")
            self.press("Next" if number < len(ONBOARDING) else "Get Started")
        self.expect_names("Search company", "Home", "Calendar", "Train", "History", "Memory", "Guide", "Settings")
        wait_for("the onboarding's mark", 10, lambda: "onboardingCompleted=true" in self.preferences())

    def a_company_is_searched_and_briefed(self):
        self.focus("Search company")
        self.type("halden")
        self.wait_for_name(COMPANY)
        self.press(COMPANY)
        self.expect_names("Total: $185K", "Orders: 14", "Tom Berg")
        self.take_picture("brief")

    def the_handoff_has_its_own_window(self):
        self.press("AE Handoff")
        self.press("Open Window")
        window = wait_for("the handoff's window", 20, lambda: self.window_of("AE Handoff.*"))
        self.expect_names("140 devices", "6 calls", "23 emails")
        out("xdotool", "windowfocus", "--sync", window)
        self.keys("Escape")
        wait_for("the end of the handoff's window", 20, lambda: not self.window_of("AE Handoff.*"))

    def the_timeline_unfolds(self):
        self.press("Engagement")
        self.wait_for_name("Engagement, 6")

    def the_call_is_prepared(self):
        self.press("Budget")
        self.focus("Call notes")
        self.type(PREPARED)
        wait_for("the counter", 20, lambda: self.widget(f"{len(PREPARED)}/1000 characters"))

    def the_call_runs_in_three_layouts(self):
        self.press("Start Coaching")
        wait_for("the pipeline", 20, lambda: "Pipeline ready" in self.debug_log())
        begun = time.monotonic()
        self.expect_names(COMPANY, "Speak into mic to start...", "Status: Listening...")
        for size, keys in (((700, 350), None), ((500, 400), "ctrl+l"), ((600, 36), "ctrl+l"), ((700, 350), "ctrl+l")):
            if keys:
                self.keys(keys)
            wait_for(f"a window of {size}", 20, lambda size=size: self.size() == size)
            self.take_picture(f"call-{size[0]}")
        self.speak("We lose two trucks a week to late dispatch. Who signs such a contract?")
        wait_for("a line of the transcript", 20, self.heard_lines)
        time.sleep(max(0, KEPT_AFTER_SECONDS - (time.monotonic() - begun)))
        self.press("End Session")

    def heard_lines(self):
        counters = self.program.counters_or_none()
        return counters and counters["mic"]["utterances"]

    def the_summary_is_rated_and_copied(self):
        self.expect_names(COMPANY, "How was this session?", "Done")
        self.take_picture("summary")
        self.press("Helpful")
        self.press("Copy Summary")
        report = self.clipboard()
        for line in ("# Corvellan Bram — Session Report", f"**Company:** {COMPANY}", "## MEDDIC: "):
            if line not in report:
                raise Wrong(f"the copied report lacks {line!r}: {report}")
        call = self.newest_call()
        wait_for("the rating on the server", 20, lambda: [entry["rating"] for entry in self.newest_call()["feedback"]] == [1])
        expect("the call's company", call["company_name"], COMPANY)
        expect("the call's goals", call["goals"], ["budget_timeline"])
        expect("the call's notes", call["call_notes"], f"Call prep:\n{PREPARED}")
        self.press("Done")

    def history_row(self):
        return next((widget for widget in self.program.widgets() if widget.get_name().startswith(f"{COMPANY}, ")), None)

    def the_history_is_filtered(self):
        self.expect_names("Your Stats", "Sessions: 1", "Today")
        self.press("Type: Train")
        self.expect_names("No train sessions yet")
        self.take_picture("history-without-match")
        self.press("Type: Live")
        self.press("Period: 24h")
        self.expect_names("Sessions: 1")
        if self.history_row() is None:
            raise Wrong("the filters hide the call")

    def the_memory_note_is_kept(self):
        self.press("Memory")
        self.expect_names("Your Context", "0 of 2000 characters")
        # The heading has the editor's name too, and takes no keyboard.
        editor = next(widget for widget in self.program.widgets()
                      if widget.get_name() == "Your Context" and widget.get_role() == Atspi.Role.TEXT)
        Atspi.Component.grab_focus(editor)
        self.type(NOTE)
        self.wait_for_name("Saved")
        self.take_picture("memory")
        expect("the note's file", (self.home / ".config/corvellan/memory.md").read_text(), NOTE)

    def the_guide_is_read(self):
        self.press("Guide")
        self.expect_names("Your AI Sales Coach", "How It Works")
        self.take_picture("guide")

    def the_next_call_sends_the_note(self):
        self.press("Home")
        self.press("Clear search")
        self.press("Start Coaching")
        wait_for("the pipeline", 20, lambda: self.debug_log().count("Pipeline ready") == 2)
        self.press("Stop")
        self.wait_for_name("Home")
        told = f"Rep context:\n{NOTE}\n\nCall prep:\n{PREPARED}"
        wait_for("the note at the coach", 20, lambda: self.newest_call()["call_notes"] == told)

    def settings_outlive_a_restart(self):
        self.press("Settings")
        self.press("Share active window with coach")
        wait_for("the choice", 20, lambda: "screenShareEnabled=true" in self.preferences())
        self.take_picture("settings")
        self.program.process.terminate()
        expect("the exit status", self.program.process.wait(10), 0)
        self.launch(2)
        self.wait_for_name(f"Sign out {USER.split('@')[0]}")
        self.expect_names("Search company")
        self.press("Settings")
        widget = wait_for("the switch", 20, lambda: self.widget("Share active window with coach"), every=0.2)
        if not is_checked(widget):
            raise Wrong("the choice is forgotten")
        self.press("History")
        wait_for("the call in the history", 20, self.history_row, every=0.2)

    def take_picture(self, name):
        self.program.screenshot(self.output / f"{name}.png", whole_screen=True)

    def steps(self):
        return [
            self.give_the_desktop_a_browser,
            self.start_sandbox,
            self.a_first_start_asks_to_sign_in,
            self.sign_in_through_the_browser,
            self.the_onboarding_leads_through_five_steps,
            self.a_company_is_searched_and_briefed,
            self.the_handoff_has_its_own_window,
            self.the_timeline_unfolds,
            self.the_call_is_prepared,
            self.the_call_runs_in_three_layouts,
            self.the_summary_is_rated_and_copied,
            self.the_history_is_filtered,
            self.the_memory_note_is_kept,
            self.the_guide_is_read,
            self.the_next_call_sends_the_note,
            self.settings_outlive_a_restart,
        ]


def wait_for_names(program, names, seconds=20):
    """Those that are still not on the screen when the time is up."""
    deadline = time.monotonic() + seconds
    while missing := [name for name in names if name not in program.names()]:
        if time.monotonic() > deadline:
            return missing
        time.sleep(0.2)
    return []


def is_checked(widget):
    return widget.get_state_set().contains(Atspi.StateType.CHECKED)


if __name__ == "__main__":
    sys.exit(walk(Screens, argparse.ArgumentParser()))
