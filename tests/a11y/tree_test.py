"""Velino as a screen reader meets it: the real program on its own accessibility bus,
read over AT-SPI with pyatspi, the way Orca reads it.

    dbus-run-session -- python3 tree_test.py VELINO DEFAULT_RECORD_JSON

Starts VELINO on a fresh saved state (so the form shows the default record), and checks:
  password   the lock screen's field exposes only mask characters, in its text and in the
             events a wrong attempt raises; the error is announced
  actions    every node with an action (Press, Toggle...) has a name
  fields     every text field is named by the label above it (fields scrolled out of the
             form's view are in the tree too, only not "showing")
  status     "Copier objet", pressed through AT-SPI, copies the subject and its status
             change raises an event
  preview    the e-mail preview's heading, paragraphs, links and logo are in the tree
  close      closing the window as a window manager does ends the program normally
Prints every failure with the node's path, and exits 1 if there is any.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import GLib

from atspi_session import accessibility_environment

PASSWORD = "Falcon77!"
WRONG_PASSWORD = "Zq7xWk"
WRONG_PASSWORD_TEXT = "Mot de passe incorrect."
SUBJECT_COPIED_TEXT = "Objet copie."

# The form's fields: the record field each shows, and the FieldLabel text above it.
FIELD_LABELS = {
    "recipientName": "Nom du client",
    "recipientEmail": "Email du client",
    "subject": "Objet du mail",
    "preheader": "Preheader",
    "mailTitle": "Titre principal",
    "mailIntro": "Phrase d'ouverture",
    "mailBody": "Message principal",
    "highlight": "Ligne de mise en avant",
    "detailLabel1": "Libelle 1",
    "detailValue1": "Valeur 1",
    "detailLabel2": "Libelle 2",
    "detailValue2": "Valeur 2",
    "detailLabel3": "Libelle 3",
    "detailValue3": "Valeur 3",
    "detailLabel4": "Libelle 4",
    "detailValue4": "Valeur 4",
    "ctaLabel": "Texte du bouton",
    "ctaURL": "Lien du bouton",
    "closingNote": "Phrase de fin",
    "logoURL": "URL du logo email",
    "accentPrimary": "Couleur principale",
    "accentSecondary": "Couleur secondaire",
    "titleFont": "Police titres",
    "bodyFont": "Police texte",
    "businessName": "Nom de l'atelier",
    "businessTagline": "Sous-titre / activite",
    "senderName": "Nom expediteur",
    "senderRole": "Role",
    "senderPhone": "Telephone",
    "senderEmail": "Email pro",
    "footerNote": "Note de pied de mail",
}
# The fields empty on a fresh start, in reading order.
EMPTY_FIELD_LABELS = ["Nom du preset", "Code prive de synchronisation"]
TEXT_FIELD_ROLES = {"text", "entry", "password text"}


def pump(seconds):
    """Runs the D-Bus event loop for `seconds`, so that events reach the listener."""
    context = GLib.MainContext.default()
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        while context.pending():
            context.iteration(False)
        time.sleep(0.02)


def wait_for(condition, timeout_s, step_s=0.1):
    end = time.monotonic() + timeout_s
    while True:
        value = condition()
        if value or time.monotonic() > end:
            return value
        pump(step_s)


def normalized(text):
    return text.replace("\u2029", "\n").replace("\u2028", "\n").strip()


class Node:
    """What a screen reader reads of one accessible object, with its path in the tree."""

    def __init__(self, accessible, path):
        self.accessible = accessible
        self.path = path
        self.role = accessible.getRoleName()
        self.name = accessible.name or ""
        self.editable = accessible.getState().contains(pyatspi.STATE_EDITABLE)
        try:
            action = accessible.queryAction()
            self.actions = [action.getName(i) for i in range(action.nActions)]
        except NotImplementedError:
            self.actions = []
        try:
            self.text = accessible.queryText().getText(0, -1)
        except NotImplementedError:
            self.text = None

    def __str__(self):
        return "%s (%s %r)" % (self.path, self.role, self.name)


def walk(accessible, parent_path=None, index=None):
    """Every node under `accessible` (itself included), depth first. A node's path gives,
    for each step down, the child's index, role and name: 0:frame[Velino]/3:panel/..."""
    role = accessible.getRoleName()
    step = "%s[%s]" % (role, accessible.name) if accessible.name else role
    if index is not None:
        step = "%d:%s" % (index, step)
    path = parent_path + "/" + step if parent_path else step
    nodes = [Node(accessible, path)]
    for child_index in range(accessible.childCount):
        child = accessible.getChildAtIndex(child_index)
        if child is not None:
            nodes.extend(walk(child, path, child_index))
    return nodes


class EventLog:
    """Every event the application sends, with what its source was named when it came."""

    def __init__(self):
        self.events = []
        for event_type in ("object:", "window:", "focus:"):
            pyatspi.Registry.registerEventListener(self.record, event_type)

    def record(self, event):
        try:
            source_name = event.source.name or ""
            role = event.source.getRoleName()
        except Exception:  # the source may be gone already
            source_name, role = "", ""
        self.events.append({"type": event.type, "source": source_name, "role": role,
                            "data": str(event.any_data), "time": time.monotonic()})

    def since(self, start):
        return [e for e in self.events if e["time"] >= start]


class Velino:
    def __init__(self, program, scratch):
        env = accessibility_environment()
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"):
            env[name] = tempfile.mkdtemp(dir=scratch)
            os.chmod(env[name], 0o700)
        if os.geteuid() == 0:  # the web engine's sandbox refuses to run as root
            env.setdefault("QTWEBENGINE_DISABLE_SANDBOX", "1")
        self.env = env
        self.closed = False  # asked to close by the test
        self.log_file = os.path.join(scratch, "velino.log")
        with open(self.log_file, "w") as log:
            self.process = subprocess.Popen([program], env=env, stdout=log, stderr=log)

    def frame(self):
        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            app = desktop.getChildAtIndex(index)
            if app is not None and app.name == "Velino" and app.childCount > 0:
                return app.getChildAtIndex(0)
        return None

    def type_keys(self, text=None, key=None):
        command = ["xdotool", "type", "--delay", "20", text] if text else ["xdotool", "key", key]
        subprocess.check_call(command, env=self.env)

    def close_window(self):
        """Asks the window to close, as a window manager's close button does."""
        from Xlib import X, display, protocol
        screen = display.Display(self.env["DISPLAY"])
        window_ids = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid)],
            env=self.env, capture_output=True, text=True).stdout.split()
        protocols = screen.intern_atom("WM_PROTOCOLS")
        delete = screen.intern_atom("WM_DELETE_WINDOW")
        for window_id in window_ids:
            window = screen.create_resource_object("window", int(window_id))
            window.send_event(protocol.event.ClientMessage(
                window=window, client_type=protocols, data=(32, [delete, X.CurrentTime, 0, 0, 0])))
        screen.flush()
        screen.close()
        return len(window_ids)

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


class Checks:
    def __init__(self):
        self.failures = {}

    def fail(self, check, message):
        self.failures.setdefault(check, []).append(message)

    def report(self):
        for check, messages in self.failures.items():
            print("FAIL %s (%d)" % (check, len(messages)))
            for message in messages:
                print("  " + message)
        return 1 if self.failures else 0


def find(nodes, predicate):
    return next((n for n in nodes if predicate(n)), None)


def check_password(app, frame, log, checks):
    nodes = walk(frame)
    field = find(nodes, lambda n: n.role == "password text")
    if field is None:
        checks.fail("password", "no password field in the lock screen's tree")
        return
    if not field.name.strip():
        checks.fail("fields", "%s: the password field has no name" % field)
    start = time.monotonic()
    app.type_keys(WRONG_PASSWORD)
    typed = wait_for(lambda: len(Node(field.accessible, field.path).text or "") ==
                     len(WRONG_PASSWORD), 5)
    shown = Node(field.accessible, field.path)
    if not typed:
        checks.fail("password", "%s: typed %d characters, the field shows %r"
                    % (shown, len(WRONG_PASSWORD), shown.text))
    leaks = [t for t in (shown.text or "", shown.name, field.accessible.description or "")
             if set(t) & set(WRONG_PASSWORD)]  # the mask characters are none of these
    for leak in leaks:
        checks.fail("password", "%s exposes typed characters: %r" % (shown, leak))
    app.type_keys(key="Return")
    wait_for(lambda: any(e["type"].startswith("object:text-changed:delete") and
                         e["role"] == "password text" for e in log.since(start)), 5)
    text_events = [e for e in log.since(start)
                   if e["type"].startswith("object:text-changed") and e["role"] == "password text"]
    if not text_events:
        checks.fail("password", "%s: clearing the field after a wrong attempt raised no "
                    "text-changed event" % field)
    for event in text_events:
        if set(event["data"]) & set(WRONG_PASSWORD):
            checks.fail("password", "%s: %s carries %r" % (field, event["type"], event["data"]))
    check_announced(log, start, WRONG_PASSWORD_TEXT, "the wrong password", checks)
    app.type_keys(PASSWORD)
    app.type_keys(key="Return")


def check_announced(log, start, text, what, checks):
    """Some event after `start` tells a screen reader `text`: a name change of the node
    showing it, new text, an announcement or a new child named so."""
    def announced():
        return any(text in e["source"] or text in e["data"]
                   for e in log.since(start)
                   if e["type"].startswith(("object:property-change:accessible-name",
                                            "object:text-changed", "object:announcement",
                                            "object:children-changed:add",
                                            "object:state-changed:showing")))
    if not wait_for(announced, 3):
        checks.fail("status", "%s: no event carries %r" % (what, text))


def check_actions(nodes, checks):
    for node in nodes:
        actions = [a for a in node.actions if a != "SetFocus"]
        if actions and not node.name.strip():
            checks.fail("actions", "%s: actions %s, no name" % (node, actions))


def check_field_names(nodes, record, checks):
    by_value = {normalized(value): field for field, value in record.items()}
    empty_labels = list(EMPTY_FIELD_LABELS)
    seen = set()
    for node in nodes:
        if not (node.editable and node.role in TEXT_FIELD_ROLES):
            continue
        value = normalized(node.text or "")
        if value in by_value:
            field = by_value[value]
            label = FIELD_LABELS.get(field)
            seen.add(field)
        elif not value and empty_labels:
            label = empty_labels.pop(0)
        else:
            checks.fail("fields", "%s: a field showing %r, not a field of the form"
                        % (node, value[:40]))
            continue
        if label is None:
            continue
        if node.name != label:
            checks.fail("fields", "%s showing %r: named %r, its label is %r"
                        % (node.path, value[:30], node.name, label))
    for field in sorted(set(FIELD_LABELS) - seen):
        checks.fail("fields", "the field %r (%s) is not in the tree"
                    % (FIELD_LABELS[field], field))
    for label in empty_labels:
        checks.fail("fields", "the empty field %r is not in the tree" % label)


def clipboard(env):
    result = subprocess.run(["xclip", "-o", "-selection", "clipboard"], env=env,
                            capture_output=True, text=True, timeout=5)
    return result.stdout if result.returncode == 0 else None


def check_status_change(app, nodes, log, record, checks):
    button = find(nodes, lambda n: n.name == "Copier objet" and "Press" in n.actions)
    if button is None:
        checks.fail("status", "no node named 'Copier objet' with a Press action")
        return
    start = time.monotonic()
    button.accessible.queryAction().doAction(button.actions.index("Press"))
    if not wait_for(lambda: clipboard(app.env) == record["subject"], 3):
        checks.fail("status", "%s: Press returned but the subject was not copied "
                    "(clipboard: %r)" % (button, clipboard(app.env) or "empty"))
    check_announced(log, start, SUBJECT_COPIED_TEXT, "'Copier objet' pressed", checks)


def check_preview(frame, record, checks):
    def document():
        return find(walk(frame), lambda n: n.role.startswith("document") and
                    n.accessible.childCount > 0)
    doc = wait_for(document, 15, 0.5)
    if doc is None:
        checks.fail("preview", "no e-mail document with content in the tree")
        return
    content = walk(doc.accessible, doc.path.rsplit("/", 1)[0] or None)
    expected = [
        ("heading", lambda n: n.role == "heading" and n.name == record["mailTitle"]),
        ("paragraph", lambda n: n.role == "paragraph"),
        ("link", lambda n: n.role == "link" and n.name == record["ctaLabel"]),
        ("logo", lambda n: n.role == "image" and n.name == record["businessName"]),
    ]
    for what, predicate in expected:
        if find(content, predicate) is None:
            checks.fail("preview", "%s: no %s" % (doc.path, what))


def check_close(app, checks):
    app.closed = True
    if app.close_window() == 0:
        checks.fail("close", "no window of velino found to close")
        return
    try:
        status = app.process.wait(10)
    except subprocess.TimeoutExpired:
        checks.fail("close", "velino still runs 10 s after its only window was closed")
        return
    if status != 0:
        checks.fail("close", "velino ended with status %d once its window was closed; its "
                    "last output:\n%s" % (status, tail(app.log_file)))


def tail(path, lines=15):
    with open(path, errors="replace") as f:
        return "".join(f.readlines()[-lines:])


def main(argv):
    if len(argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    program, record_file = argv[1], argv[2]
    with open(record_file, encoding="utf-8") as f:
        record = json.load(f)
    checks = Checks()
    log = EventLog()
    scratch = tempfile.mkdtemp(prefix="velino-a11y-")
    app = Velino(program, scratch)
    try:
        frame = wait_for(app.frame, 20, 0.2)
        if frame is None:
            print("FAIL Velino did not appear on the accessibility bus")
            return 1
        wait_for(lambda: find(walk(frame), lambda n: n.role == "password text"), 10)
        check_password(app, frame, log, checks)
        if not wait_for(lambda: find(walk(frame), lambda n: n.name == "Copier objet"), 15, 0.3):
            checks.fail("unlock", "the main window did not appear after the password")
            return checks.report()
        check_preview(frame, record, checks)
        nodes = walk(frame)
        print("%d nodes in the unlocked window's tree" % len(nodes))
        check_actions(nodes, checks)
        check_field_names(nodes, record, checks)
        check_status_change(app, nodes, log, record, checks)
        check_close(app, checks)
    except GLib.Error as error:
        checks.fail("program", "the bus failed: %s" % error.message)
        app.process.wait(3)
    finally:
        if app.process.poll() is not None and not app.closed:
            checks.fail("program", "velino ended with status %d; its last output:\n%s"
                        % (app.process.returncode, tail(app.log_file)))
        app.stop()
        shutil.rmtree(scratch, ignore_errors=True)
    status = checks.report()
    print("accessibility tree: %s" % ("all checks passed" if status == 0 else "failures above"))
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv))
