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
# The record field each form field shows, and the label above it that names it.
FIELD_LABELS = {
    **{"detailLabel%d" % i: "Libelle %d" % i for i in range(1, 5)},
    **{"detailValue%d" % i: "Valeur %d" % i for i in range(1, 5)},
    "recipientName": "Nom du client", "recipientEmail": "Email du client",
    "subject": "Objet du mail", "preheader": "Preheader", "mailTitle": "Titre principal",
    "mailIntro": "Phrase d'ouverture", "mailBody": "Message principal",
    "highlight": "Ligne de mise en avant", "ctaLabel": "Texte du bouton",
    "ctaURL": "Lien du bouton", "closingNote": "Phrase de fin", "logoURL": "URL du logo email",
    "accentPrimary": "Couleur principale", "accentSecondary": "Couleur secondaire",
    "titleFont": "Police titres", "bodyFont": "Police texte",
    "businessName": "Nom de l'atelier", "businessTagline": "Sous-titre / activite",
    "senderName": "Nom expediteur", "senderRole": "Role", "senderPhone": "Telephone",
    "senderEmail": "Email pro", "footerNote": "Note de pied de mail"}
# A new status reaches a screen reader as a new name, text, announcement or child.
ANNOUNCING = ("object:property-change:accessible-name", "object:text-changed",
              "object:announcement", "object:children-changed:add", "object:state-changed:showing")
failures, events = [], []  # events: (type, source role, source name, data), since the last clear()


def fail(check, message): failures.append("%s: %s" % (check, message))


def wait_for(condition, timeout_s, step_s=0.1):  # runs the D-Bus loop, which brings the events
    context, end = GLib.MainContext.default(), time.monotonic() + timeout_s
    while not (value := condition()) and time.monotonic() < end:
        while context.pending():
            context.iteration(False)
        time.sleep(step_s)
    return value


def record_event(event):
    role = source = ""
    with contextlib.suppress(Exception):  # the source may be gone already
        role, source = event.source.getRoleName(), event.source.name or ""
    events.append((event.type, role, source, str(event.any_data)))


def events_of(types, role=None):
    return [e for e in events if e[0].startswith(types) and role in (None, e[1])]


def normalized(text): return text.replace("\u2029", "\n").replace("\u2028", "\n").strip()


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
        self.value = normalized(self.text or "")
        self.label = "%s (%s %r)" % (path, self.role, self.name)


def walk(accessible, path=None):  # every node under `accessible`, itself included, depth first
    def step(a):
        return "%s[%s]" % (a.getRoleName(), a.name) if a.name else a.getRoleName()

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
        self.closed = False  # asked to close by the test
        self.log_file = os.path.join(scratch, "velino.log")
        with open(self.log_file, "w") as log:
            self.process = subprocess.Popen([program], env=self.env, stdout=log, stderr=log)

    def xdotool(self, *args):
        return subprocess.run(["xdotool", *args], env=self.env, capture_output=True,
                              text=True).stdout

    def close_window(self):  # as a window manager's close button does
        from Xlib import X, display, protocol
        screen = display.Display(self.env["DISPLAY"])
        windows = self.xdotool("search", "--onlyvisible", "--pid", str(self.process.pid)).split()
        data = (32, [screen.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0])
        for window in (screen.create_resource_object("window", int(w)) for w in windows):
            window.send_event(protocol.event.ClientMessage(
                window=window, client_type=screen.intern_atom("WM_PROTOCOLS"), data=data))
        screen.sync()  # Xorg drops a closed connection's requests it has not read yet
        screen.close()
        return len(windows)

    def log_tail(self): return "".join(open(self.log_file, errors="replace").readlines()[-15:])


def check_announced(text, what):
    if not wait_for(lambda: any(text in e[2] or text in e[3] for e in events_of(ANNOUNCING)), 3):
        fail("status", "%s: no event carries %r" % (what, text))


def check_password(app, frame):  # only mask characters, in the field and in the events
    field = wait_for(lambda: find(walk(frame), lambda n: n.role == "password text"), 10)
    if field is None:
        return fail("password", "no password field in the lock screen's tree")
    if not field.name.strip():
        fail("fields", "%s: the password field has no name" % field.label)
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
    for what, text in exposed + [(e[0], e[3]) for e in text_events]:
        if set(text) & set(WRONG_PASSWORD):  # the mask characters are none of these
            fail("password", "%s: %s exposes typed characters: %r" % (field.label, what, text))
    check_announced("Mot de passe incorrect.", "the wrong password")
    app.xdotool("type", "--delay", "20", PASSWORD)
    app.xdotool("key", "Return")


# Fields scrolled out of view are in the tree too, only not "showing".
def check_names(nodes, record):
    for node in nodes:
        if [a for a in node.actions if a != "SetFocus"] and not node.name.strip():
            fail("actions", "%s: actions %s, no name" % (node.label, node.actions))
    fields = [n for n in nodes if n.editable and n.role in ("text", "entry", "password text")]
    expected = [(label, normalized(record[field])) for field, label in FIELD_LABELS.items()]
    for label, value in expected + [("Nom du preset", ""), ("Code prive de synchronisation", "")]:
        if (node := find(fields, lambda n: n.name == label and n.value == value)) is None:
            fail("fields", "no field named %r showing %r" % (label, value[:30]))
        else:
            fields.remove(node)
    for node in fields:
        fail("fields", "%s: a field showing %r, not a named field of the form"
             % (node.label, node.value[:40]))


def check_copy_subject(nodes):  # what it copies is the store's copy tests'
    if (button := find(nodes, lambda n: n.name == "Copier objet" and "Press" in n.actions)) is None:
        return fail("status", "no node named 'Copier objet' with a Press action")
    events.clear()
    button.accessible.queryAction().doAction(button.actions.index("Press"))
    check_announced("Objet copie.", "'Copier objet' pressed")


def check_preview(frame, record):
    def is_document(n):
        return n.role.startswith("document") and n.accessible.childCount > 0

    if (doc := wait_for(lambda: find(walk(frame), is_document), 15, 0.5)) is None:
        return fail("preview", "no e-mail document with content in the tree")
    for role, name in [("heading", record["mailTitle"]),
                       ("paragraph", None),
                       ("link", record["ctaLabel"]),
                       ("image", record["businessName"])]:
        if not find(walk(doc.accessible, doc.path),
                    lambda n: n.role == role and name in (None, n.name)):
            fail("preview", "%s: no %s named %r" % (doc.path, role, name))


def check_close(app):
    app.closed, asked = True, app.close_window()
    try:
        if (status := app.process.wait(10)) != 0:
            fail("close", "velino ended with status %d once closed:\n%s" % (status, app.log_tail()))
    except subprocess.TimeoutExpired:
        fail("close", "velino still runs 10 s after its %d window(s) were asked to close" % asked)


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
    check_names(nodes := walk(frame), record)
    check_copy_subject(nodes)
    check_close(app)


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
            if app.process.poll() is not None and not app.closed:
                fail("program", "velino ended with status %d:\n%s"
                     % (app.process.returncode, app.log_tail()))
            app.process.kill()
            app.process.wait()
    print("".join("FAIL %s\n" % f for f in failures) + "accessibility tree: " +
          ("failures above" if failures else "all checks passed"))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 3 else __doc__)
