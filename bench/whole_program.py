"""Measures the built program from outside, as a person meets it, against its budgets.

Every figure that a machine changes is a ratio to an empty Qt Quick window measured in the same run.
Frames are read from Qt's own log of its render loop; what is on the screen is read from the screen.

Usage: whole_program.py PROGRAMS_FOLDER ASSISTANT_HOST CERTIFICATE KEY
"""

import base64
import json
import os
import re
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
import uuid
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1] / "tests" / "e2e"))

from desktop import Desktop, die_with_parent, wait_until  # noqa: E402

DESKTOP = Desktop()

from aulora_driver import STORE, Program  # noqa: E402  (its bus has to be there first)
from recording_server import RecordingServer  # noqa: E402
from screen import Screen  # noqa: E402

RUNS = 7
REPLY_LINE = "- La **mitosis** separa los cromosomas duplicados en dos núcleos iguales entre sí."
FRAME = re.compile(r"^ *(?P<time>[\d.]+) .*rame rendered(?: with '\w+' renderloop)? in (?P<cost>\d+)ms")
ORANGE_IS_RED_OVER_BLUE = 100


def percentile(values, share):
    return sorted(values)[min(len(values) - 1, int(len(values) * share))]


class Measured:
    """One run of a program on a renderer, with no accessibility. Its frames are logged, unless the
    log itself would be measured."""

    def __init__(self, executable, renderer, home, log_frames=True):
        self._log = tempfile.NamedTemporaryFile(dir=DESKTOP.folder, delete=False)
        environment = DESKTOP.environment | {
            "HOME": str(home),
            "QT_QUICK_BACKEND": renderer,
            "QT_MESSAGE_PATTERN": "%{time boot} %{category} %{message}",
            "QT_LOGGING_RULES": f"qt.scenegraph.time.renderloop={str(log_frames).lower()}",
        }
        del environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]
        self.started = time.clock_gettime(time.CLOCK_BOOTTIME)
        self.process = subprocess.Popen([executable], env=environment, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=self._log,
                                        preexec_fn=die_with_parent)
        if log_frames:
            wait_until(self.frames, "the first frame")

    def frames(self):
        """When each frame so far was done, in seconds since the machine started, and what it cost
        in milliseconds."""
        lines = Path(self._log.name).read_text(errors="replace").splitlines()
        return [(float(found["time"]), int(found["cost"]))
                for found in map(FRAME.match, lines) if found]

    def settle(self, seconds=0.4):
        """Waits until nothing has been painted for a while. A visible caret blinks every 0.5 s."""
        wait_until(lambda: time.clock_gettime(time.CLOCK_BOOTTIME) - self.frames()[-1][0] > seconds,
                   "the program to come to rest", 120)

    def settle_without_log(self):
        """The same from the processor time, which a blinking caret hardly moves."""
        def rests():
            used = self.processor_time
            time.sleep(0.8)  # What is looked at.
            return used > 0.05 and self.processor_time - used < 0.02

        wait_until(rests, "the program to come to rest", 120)

    @property
    def memory(self):
        """The proportional set size, in MiB."""
        rollup = Path(f"/proc/{self.process.pid}/smaps_rollup").read_text()
        return int(re.search(r"^Pss: +(\d+)", rollup, re.MULTILINE)[1]) / 1024

    @property
    def processor_time(self):
        """Seconds of processor time used so far."""
        fields = Path(f"/proc/{self.process.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def end(self):
        self.process.kill()
        self.process.wait()


def identifier():
    return str(uuid.uuid4()).upper()


def conversation(title, messages, lines=15, preview=0):
    """A stored conversation of questions and replies in turn, as the program writes it."""
    stored = []
    for number in range(messages):
        is_user = number % 2 == 0
        message = {"id": identifier(), "isUser": is_user,
                   "text": "¿Cómo sigue?" if is_user else "\n".join([REPLY_LINE] * lines)}
        if preview and is_user:
            message["imagePreviewData"] = base64.b64encode(os.urandom(preview)).decode()
            message["attachmentName"] = "foto.jpg"
        stored.append(message)
    return {"id": identifier(), "title": title, "messages": stored}


def home_with(conversations):
    """A home folder whose store holds these conversations."""
    home = Path(tempfile.mkdtemp(prefix="home-", dir=DESKTOP.folder))
    (home / STORE).parent.mkdir(parents=True, mode=0o700)
    with sqlite3.connect(home / STORE) as store:
        store.execute("create table preferences(key text primary key, value)")
        store.execute("insert into preferences values('aulora.conversations.v3', ?)",
                      [json.dumps(conversations, ensure_ascii=False).encode()])
    return home


def six_megabytes():
    return [conversation(f"Conversación {number}", 20, preview=20_000) for number in range(22)]


def report(what, measured, budget, unit, floor=None):
    """Prints one line in the form that every benchmark of this project uses."""
    limit = f"budget <= {budget:g} {unit}".rstrip() + (f", floor {floor}" if floor else "")
    print(f"figure: {what} = {measured:.3g} {unit}".rstrip() + f" ({limit}) "
          + ("ok" if measured <= budget else "MISSED"), flush=True)


class Bench:
    def __init__(self, folder, host, certificate, key):
        self.program = Path(folder).resolve() / "aulora-ia"
        self.empty = Path(folder).resolve() / "empty-window"
        self.assistant = RecordingServer(int(host.rpartition(":")[2]), certificate, key)
        self.screen = Screen(DESKTOP.environment["DISPLAY"])

    def start_and_memory(self, renderer, name):
        home = home_with(six_megabytes())
        starts, memory = {self.program: [], self.empty: []}, {self.program: [], self.empty: []}
        for _ in range(RUNS):
            for executable in (self.empty, self.program):
                run = Measured(executable, renderer, home)
                starts[executable].append(run.frames()[0][0] - run.started)
                run.settle()
                memory[executable].append(run.memory)
                run.end()
        start, floor = (statistics.median(starts[x]) * 1000 for x in (self.program, self.empty))
        report(f"cold start, 6 MB history, {name}", start / floor, 1.6, "x an empty window",
               f"{floor:.0f} ms")
        used, floor = (statistics.median(memory[x]) for x in (self.program, self.empty))
        report(f"memory at rest, 6 MB history, {name}", used / floor, 1.6, "x an empty window",
               f"{floor:.0f} MiB")

    def learn_places(self, home):
        """Where on the screen things are, asked once through accessibility."""
        program = Program(DESKTOP, self.program, home, {"QT_QUICK_BACKEND": "software"})
        places = {"composer": program.composer.rectangle,
                  "status": program.element("label", "En línea").rectangle,
                  "rows": {row.name: row.center for row in program.elements("list item")}}
        program.kill()
        return places

    def idle(self):
        run = Measured(self.program, "software", home_with([]))
        run.settle()
        # The keyboard goes from the composer to a button, and the caret with it.
        self.screen.press("Tab")
        run.settle(1)
        frames, used = len(run.frames()), run.processor_time
        time.sleep(10)  # The length of the measurement itself.
        report("idle for 10 s: frames", len(run.frames()) - frames, 0, "")
        report("idle for 10 s: processor", run.processor_time - used, 0, "s")
        run.end()

    def ask(self, run, places):
        """Asks something with the mouse and the keyboard; the request that comes of it."""
        x, y, width, height = places["composer"]
        self.screen.click(x + width // 2, y + height // 2)
        self.screen.press("a")
        self.screen.press("Return")
        return self.assistant.next_request()

    def status_is_busy(self, places, busy):
        """A condition on the status chip's dot, orange or not, and the rectangle to look at. The
        dot moves with the width of the label beside it."""
        x, y, width, height = places["status"]

        def holds(pixels):
            return any(red - blue > ORANGE_IS_RED_OVER_BLUE
                       for blue, red in zip(pixels[0::4], pixels[2::4])) == busy

        return holds, (x - 60, y + height // 2, width + 60, 1)

    def stream(self, run, places, lines, rate=None):
        """Streams a reply, lines a second or as fast as they go. When the first byte was sent, and
        when the status said that the last had come, in seconds since the machine started."""
        request = self.ask(run, places)
        self.screen.wait_for(*self.status_is_busy(places, True), "the exchange to begin")
        begin = time.clock_gettime(time.CLOCK_BOOTTIME)
        request.begin()
        if rate:
            for number in range(lines):
                request.write(REPLY_LINE + "\n")
                due = begin + (number + 1) / rate
                time.sleep(max(0, due - time.clock_gettime(time.CLOCK_BOOTTIME)))
        else:
            request.write((REPLY_LINE + "\n") * lines)
        request.finish()
        self.screen.wait_for(*self.status_is_busy(places, False), "the reply to end", 300)
        return begin, time.clock_gettime(time.CLOCK_BOOTTIME)

    def stream_for_frames(self, lines, rate=None):
        """The cost of each frame in milliseconds, and the seconds until the reply was painted."""
        home = home_with([])
        places = self.learn_places(home)
        run = Measured(self.program, "software", home)
        run.settle()
        seen = len(run.frames())
        begin, end = self.stream(run, places, lines, rate)
        run.settle()
        frames = run.frames()[seen:]
        run.end()
        # The reply's last lines may be one frame later than the status. The frame after it is
        # theirs, or the first of the scroll that follows them.
        painted = next(done for done, _ in frames if done > end)
        return [cost for _, cost in frames], painted - begin

    def stream_for_processor(self, lines, rate=None):
        """The processor time of a reply, in seconds."""
        home = home_with([])
        places = self.learn_places(home)
        run = Measured(self.program, "software", home, log_frames=False)
        run.settle_without_log()
        used = run.processor_time
        self.stream(run, places, lines, rate)
        run.settle_without_log()
        used = run.processor_time - used
        run.end()
        return used

    def streaming(self):
        report("2,000 lines at 200 lines/s: processor", self.stream_for_processor(2000, rate=200),
               1.5, "s")
        costs, _ = self.stream_for_frames(2000, rate=200)
        report("2,000 lines at 200 lines/s: frame, 95th percentile", percentile(costs, 0.95), 8,
               "ms")
        fast = statistics.median(self.stream_for_frames(2000)[1] for _ in range(5)) * 1000
        report("2,000 lines at once: first byte sent to painted", fast, 150, "ms")
        ten, one = self.stream_for_processor(10_000), self.stream_for_processor(1000)
        report("10,000 lines at once: processor", ten / one, 12, "x 1,000 lines", f"{one:.2f} s")

    def opening(self):
        for messages, budget in ((20, 20), (200, 90), (2000, 900)):
            home = home_with([conversation("Vacía", 2, 1), conversation("Llena", messages)])
            places = self.learn_places(home)
            times = []
            for _ in range(5):
                run = Measured(self.program, "software", home)
                run.settle()
                x, y, width, _ = places["composer"]
                # The middle of the pane, well below what two short messages reach.
                pane = (x, y - 300, width, 60)
                before = self.screen.pixels(*pane)
                begin = self.screen.click(*places["rows"]["Llena"])
                end = self.screen.wait_for(lambda pixels: pixels != before, pane, "the messages")
                times.append((end - begin) * 1000)
                run.end()
            report(f"opening a conversation of {messages} messages", statistics.median(times), budget, "ms")

    def typing(self):
        home = home_with([conversation("Llena", 200)])
        places = self.learn_places(home)
        run = Measured(self.program, "software", home)
        run.settle()
        request = self.ask(run, places)
        request.begin()
        field, times = places["composer"], []
        for number in range(400):
            request.write(REPLY_LINE + "\n")
            time.sleep(1 / 50)  # The pace of the reply and of a fast typist.
            if number % 4 == 0:
                # One letter at a time on an otherwise empty line: the caret cannot be mistaken
                # for it, because it stands still while keys are pressed.
                before = self.screen.pixels(*field)
                begin = self.screen.press("w")
                end = self.screen.wait_for(lambda pixels: pixels != before, field, "a letter")
                times.append((end - begin) * 1000)
        request.finish()
        run.end()
        report("key to painted letter while streaming, 95th percentile",
               percentile(times, 0.95), 16, "ms")

    def run(self):
        self.start_and_memory("software", "software renderer")
        self.start_and_memory("", "OpenGL")
        self.idle()
        self.streaming()
        self.opening()
        self.typing()


if __name__ == "__main__":
    try:
        Bench(*sys.argv[1:]).run()
    finally:
        DESKTOP.close()
