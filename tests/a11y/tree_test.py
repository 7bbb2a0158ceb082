"""Velino, on a fresh state, read as Orca reads it over its own AT-SPI bus; prints each failure
with its node's path. Usage: dbus-run-session -- python3 tree_test.py VELINO RECORD_JSON"""

import contextlib
import json
import os
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import GLib

from atspi_session import accessibility_environment

PASSWORD, WRONG_PASSWORD = "Falcon77!", "Zq7xWk"
failures, events = [], []  # events: (type, source role, data), since the last clear()


def fail(check, message): failures.append("%s: %s" % (check, message))


def wait_for(condition, timeout_s, step_s=0.1):  # runs the D-Bus loop, which brings the events
    context, end = GLib.MainContext.default(), time.monotonic() + timeout_s
    while not (value := condition()) and time.monotonic() < end:
        while context.pending():
            context.iteration(False)
        time.sleep(step_s)
    return value


def record_event(event):
    role = ""
    with contextlib.suppress(Exception):  # the source may be gone already
        role = event.source.getRoleName()
    events.append((event.type, role, str(event.any_data)))


def events_of(types, role=None):
    return [e for e in events if e[0].startswith(types) and role in (None, e[1])]


class Node:  # what a screen reader reads of one accessible object, with its path in the tree
    def __init__(self, accessible, path=""):
        self.accessible, self.path = accessible, path
        self.role, self.name = accessible.getRoleName(), accessible.name or ""
        self.editable = accessible.getState().contains(pyatspi.STATE_EDITABLE)
        self.actions, self.text = [], None
        with contextlib.suppress(NotImplementedError):  # no action interface
            actions = accessible.queryAction()
            self.actions = [actions.getName(i) for i in range(actions.nActions)]
        with contextlib.suppress(NotImplementedError):  # no text interface
            self.text = accessible.queryText().getText(0, -1)
        self.label = "%s (%s %r)" % (path, self.role, self.name)


def step(a): return "%s[%s]" % (a.getRoleName(), a.name) if a.name else a.getRoleName()


def walk(accessible, path=None):  # every node under `accessible`, itself included, depth first
    nodes = [Node(accessible, path or step(accessible))]
    for index, child in enumerate(accessible):
        if child is not None:
            nodes.extend(walk(child, "%s/%d:%s" % (nodes[0].path, index, step(child))))
    return nodes


def find(nodes, predicate): return next((n for n in nodes if predicate(n)), None)


class Velino:
    def __init__(self, program, scratch):
        xdg = ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR")
        self.env = dict(accessibility_environment(),
                        **{n: tempfile.mkdtemp(dir=scratch) for n in xdg})
        self.log_file = os.path.join(scratch, "velino.log")
        with open(self.log_file, "w") as log:
            self.process = subprocess.Popen([program], env=self.env, stdout=log, stderr=log)

    def xdotool(self, *args): subprocess.run(["xdotool", *args], env=self.env, capture_output=True)

    def log_tail(self): return "".join(open(self.log_file, errors="replace").readlines()[-15:])


def check_password(app, frame):  # only mask characters, in the field and in the events
    field = wait_for(lambda: find(walk(frame), lambda n: n.role == "password text"), 10)
    if field is None:
        return fail("password", "no password field in the lock screen's tree")
    check_names(walk(frame))  # the lock screen, the password field with it
    events.clear()
    app.xdotool("type", "--delay", "20", WRONG_PASSWORD)
    wait_for(lambda: len(Node(field.accessible).text or "") == len(WRONG_PASSWORD), 5)
    if len((shown := Node(field.accessible, field.path)).text or "") != len(WRONG_PASSWORD):
        fail("password", "%s: typed %d characters, it shows %r"
             % (shown.label, len(WRONG_PASSWORD), shown.text))
    app.xdotool("key", "Return")
    wait_for(lambda: events_of("object:text-changed:delete", "password text"), 5)
    text_events = events_of("object:text-changed", "password text")
    if not text_events:
        fail("password",
             "%s: clearing it after a wrong attempt raised no text-changed event" % field.label)
    exposed = [("it", t)
               for t in (shown.text or "", shown.name, field.accessible.description or "")]
    for what, text in exposed + [(e[0], e[2]) for e in text_events]:
        if set(text) & set(WRONG_PASSWORD):  # the mask characters are none of these
            fail("password", "%s: %s exposes typed characters: %r" % (field.label, what, text))
    app.xdotool("type", "--delay", "20", PASSWORD)
    app.xdotool("key", "Return")


# Every control, scrolled out of view or not, has a name and a role. Controls: what acts, what
# is edited, and scroll bars (once left unnamed).
def check_names(nodes):
    for node in nodes:
        control = [a for a in node.actions if a != "SetFocus"] or node.editable \
            or node.role == "scroll bar"
        if control and (not node.name.strip() or node.role in ("unknown", "invalid")):
            fail("names", "%s: actions %s, a control without a name or a role"
                 % (node.label, node.actions))


def check_preview(frame, record):
    def is_document(n): return n.role.startswith("document") and n.accessible.childCount > 0

    if (doc := wait_for(lambda: find(walk(frame), is_document), 15, 0.5)) is None:
        return fail("preview", "no e-mail document with content in the tree")
    for role, name in [("heading", record["mailTitle"]), ("link", record["ctaLabel"])]:
        if not find(walk(doc.accessible, doc.path), lambda n: n.role == role and n.name == name):
            fail("preview", "%s: no %s named %r" % (doc.path, role, name))


def run_checks(app, record):
    velino = lambda a: a and a.name == "Velino" and a.childCount  # noqa: E731
    frame = wait_for(
        lambda: next((a[0] for a in pyatspi.Registry.getDesktop(0) if velino(a)), None), 20, 0.2)
    if frame is None:
        return fail("program", "Velino did not appear on the accessibility bus")
    check_password(app, frame)
    if not wait_for(lambda: find(walk(frame), lambda n: n.name == "Copier objet"), 15, 0.3):
        return fail("unlock", "the main window did not appear after the password")
    check_preview(frame, record)
    check_names(walk(frame))


def main(program, record_file):
    record = json.load(open(record_file, encoding="utf-8"))
    pyatspi.Registry.registerEventListener(record_event, "object:", "window:", "focus:")
    with tempfile.TemporaryDirectory(prefix="velino-a11y-", ignore_cleanup_errors=True) as scratch:
        app = Velino(program, scratch)
        try:
            run_checks(app, record)
        except GLib.Error as error:
            fail("program", "the bus failed: %s" % error.message)
        finally:
            if app.process.poll() is not None:
                fail("program", "velino ended with status %d:\n%s"
                     % (app.process.returncode, app.log_tail()))
            app.process.kill()
            app.process.wait()
    print("".join("FAIL %s\n" % f for f in failures) + "accessibility tree: " +
          ("failures above" if failures else "all checks passed"))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 3 else __doc__)
