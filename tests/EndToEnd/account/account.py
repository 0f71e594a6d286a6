"""Signs in with a real browser, goes through the onboarding, starts a call from a meeting, rates it, and looks for
the rating on the server. Then lets the browser extension begin a call and end it.

Expects the private surroundings that `run` brings up.
"""

import argparse
import subprocess
import sys
import time
import urllib.error
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from signedin import SIGN_OUT, SIGNED_IN, SignedIn  # noqa: E402
from walk import KEPT_AFTER_SECONDS, Wrong, act, expect, wait_for, walk  # noqa: E402


class Account(SignedIn):
    def start_program(self):
        self.launch()
        self.wait_for_name("Login")

    def nobody_is_signed_in(self):
        names = self.program.names()
        for tab in ("Calendar", "History"):
            if tab in names:
                raise Wrong(f"the sidebar shows {tab} to nobody")
        try:
            self.ask_server("/calls")
            raise Wrong("the server answers without a token")
        except urllib.error.HTTPError as refusal:
            expect("the server's answer without a token", refusal.code, 401)

    def the_onboarding_leads_to_the_main_layout(self):
        self.wait_for_name(SIGNED_IN)
        expect("the sidebar beside the onboarding", SIGN_OUT in self.program.names(), False)
        for step in range(1, 5):
            self.wait_for_name(f"{step} of 5")
            self.press("Next")
        self.wait_for_name("5 of 5")
        # Both devices are there, and the program may take pictures of this display.
        for permission in ("Microphone", "Screen Recording"):
            self.wait_for_name(f"{permission}: granted")
        names = self.program.names()
        expect("what the last step offers", [name for name in ("Skip", "Next") if name in names], [])
        self.press("Get Started")
        self.wait_for_name(SIGN_OUT)
        wait_for("a word that it is done", 10, lambda: "onboardingCompleted=true" in self.settings.read_text())

    def meetings_are_listed(self):
        self.press("Calendar")
        wait_for("a meeting", 20, self.meeting, every=0.2)

    def meeting(self):
        prefix = "Start call: "
        return next((name[len(prefix):] for name in self.program.names() if name.startswith(prefix)), None)

    def a_call_starts_from_one(self):
        meeting = self.meeting()
        self.press(f"Start call: {meeting}")
        wait_for("the pipeline", 20, lambda: "Pipeline ready" in self.debug_log())
        time.sleep(KEPT_AFTER_SECONDS)
        self.press("End Session")

    def the_history_shows_it_and_takes_a_rating(self):
        wait_for("the record", 20, lambda: (self.program.counters_or_none() or {}).get("records_stored", 0) >= 1)
        self.open_the_newest_call()
        self.press("Helpful")

    def open_the_newest_call(self):
        if self.widget("Helpful"):
            return
        self.press("History")
        row = wait_for("the call in the history", 20, self.history_row, every=0.2)
        act(row)
        self.wait_for_name("Helpful")

    def history_row(self):
        return next((widget for widget in self.program.widgets()
                     if widget.get_role_name() == "list item" and widget.get_action_iface()), None)

    def the_rating_is_on_the_server(self):
        token = self.tokens()["access_token"]
        calls = self.ask_server("/calls", token)
        expect("calls on the server", len(calls), 1)
        number = calls[0]["id"]
        wait_for("the rating", 20, lambda: self.ratings(number, token))
        expect("the ratings", self.ratings(number, token), [1])

    def ratings(self, number, token):
        return [entry["rating"] for entry in self.ask_server(f"/calls/{number}", token).get("feedback", [])]

    def extension(self, *words):
        done = subprocess.run([str(self.programs / "corvellan-sandbox"), "extension", *words], capture_output=True,
                              text=True, timeout=20)
        expect(f"the extension's {words[0]}: {done.stderr.strip()}", done.returncode, 0)

    def the_extension_begins_a_call_and_ends_it(self):
        self.extension("call-start", "--company", "Halden Freight")
        # The program waits three seconds for somebody who says no.
        wait_for("the call", 20, lambda: self.program.button("End Session"), every=0.2)
        wait_for("the pipeline", 20, lambda: self.debug_log().count("Pipeline ready") == 2)
        self.extension("call-end")
        wait_for("the end of the call", 20, lambda: not self.program.button("End Session"), every=0.2)

    def steps(self):
        return [
            self.give_the_desktop_a_browser,
            self.start_sandbox,
            self.start_program,
            self.nobody_is_signed_in,
            self.sign_in_through_the_browser,
            self.the_onboarding_leads_to_the_main_layout,
            self.meetings_are_listed,
            self.a_call_starts_from_one,
            self.the_history_shows_it_and_takes_a_rating,
            self.the_rating_is_on_the_server,
            self.the_extension_begins_a_call_and_ends_it,
        ]


if __name__ == "__main__":
    sys.exit(walk(Account, argparse.ArgumentParser()))
