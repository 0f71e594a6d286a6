"""Plays a coached call in real time and judges it.

Both voices of a call script are synthesised; the salesperson is played into the default source, the
customer into the default output. The program is driven through its accessibility interface, and what
arrived at the end of every path is compared with what was played.
"""

import sys
import time

import call_judgement
import voices
from demo import Demo, main, say, wait_for_quietly

SPEAKERS = {"mic": "Salesperson", "system": "Customer"}
DEVICES = {"mic": "micfeed", "system": "spk"}
# From the moment the program listens until the first word may come.
LEAD_SECONDS = 1.0
# The provider waits for two seconds of silence, and the coach for nothing.
LAST_LINE_SECONDS = 12


class Call(Demo):
    script = "discovery-call"

    def prepare_script(self):
        say("==> Synthesising both voices")
        sandbox = str(self.programs / "corvellan-sandbox")
        self.lines, spoken_by = voices.load_script(sandbox, self.options.script)
        voices.speak(self.lines, spoken_by, self.output)
        moved = voices.lay_out(self.lines)
        self.tracks, self.seconds = voices.write_tracks(self.lines, self.output)
        voices.write_lengths(self.lines, self.output / "lengths.json")
        say(f"    {len(self.lines)} lines, {self.seconds:.0f} s" + (f", {moved} begin later than written" if moved else ""))

    def hold(self):
        say('==> Pressing "Start Coaching"')
        self.program.press("Start Coaching")
        self.wait_for_pipeline()
        self.take_screenshot("2-listening")
        time.sleep(LEAD_SECONDS)

        say(f"==> Playing the call in real time: {self.seconds:.0f} s")
        self.begin_measuring()
        for side in voices.SIDES:
            self.play(DEVICES[side], self.tracks[side])
        self.follow_call()
        self.end_measuring()
        self.finish_playing()

        finished = wait_for_quietly(LAST_LINE_SECONDS, lambda: self.heard_lines() >= len(self.lines))
        if not finished:
            say(f"    only {self.heard_lines()} of {len(self.lines)} utterances have arrived")
        # The tip on the last one has its own way to go.
        time.sleep(0.5)
        self.take_screenshot("6-last-tip")
        self.shown = self.program.names()
        self.end_session("7-ended")

    def follow_call(self):
        """Tells what is said while it plays, takes the screenshots, and looks at the memory."""
        events = [(line.end, "line", line) for line in self.lines]
        events += [(self.seconds * part, "look", name) for part, name in ((0.3, "3-early"), (0.6, "4-middle"), (0.9, "5-late"))]
        for moment, kind, what in [*sorted(events, key=lambda event: event[0]), (self.seconds, "end", None)]:
            self.sleep_until(self.began + moment)
            if kind == "line":
                say(f"    {int(moment) // 60}:{int(moment) % 60:02}  {SPEAKERS[what.side]}: {what.text}")
            elif kind == "look":
                self.look(what)

    def heard_lines(self):
        counters = self.program.counters_or_none()
        return counters["mic"]["utterances"] + counters["system"]["utterances"] if counters else 0

    def judge(self):
        evidence = call_judgement.Evidence(
            lines=self.lines,
            record=self.newest_record(),
            counters=self.counters,
            received=self.received / self.session_id(),
            shown=self.shown,
        )
        return call_judgement.judge(evidence)

    def summary(self, report):
        return call_judgement.summary(report)


if __name__ == "__main__":
    sys.exit(main(Call, __doc__.splitlines()[0]))
