"""An accessibility bus for one test: the AT-SPI registry of the D-Bus session the test
runs in (started with dbus-run-session), and a client listening to every event the way a
screen reader does, so that Qt's AT-SPI bridge really sends them.

Used as a program, runs the command given after it with accessibility forced on, while a
listener process counts events, and exits with the command's status:

    dbus-run-session -- python3 atspi_session.py PROGRAM ARGS...
"""

import os
import subprocess
import sys
import time

EVENT_TYPES = ("object:", "window:", "focus:", "document:")


def listen_forever(ready_file):
    """Registers for every event type, then says so by creating ready_file."""
    import pyatspi

    def ignore(_event):
        pass

    for event_type in EVENT_TYPES:
        pyatspi.Registry.registerEventListener(ignore, event_type)
    open(ready_file, "w").close()
    pyatspi.Registry.start()


def start_listener(scratch_folder, timeout_s=20):
    """Starts a listener process; returns it once its listeners are registered."""
    ready_file = os.path.join(scratch_folder, "listener-ready")
    listener = subprocess.Popen(
        [sys.executable, os.path.abspath(__file__), "--listen", ready_file])
    deadline = time.monotonic() + timeout_s
    while not os.path.exists(ready_file):
        if listener.poll() is not None or time.monotonic() > deadline:
            listener.kill()
            raise RuntimeError("the AT-SPI listener did not start")
        time.sleep(0.05)
    return listener


def accessibility_environment(base=None):
    env = dict(os.environ if base is None else base)
    env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    env["QT_ACCESSIBILITY"] = "1"
    return env


def main(argv):
    if len(argv) >= 3 and argv[1] == "--listen":
        listen_forever(argv[2])
        return 0
    if "DBUS_SESSION_BUS_ADDRESS" not in os.environ:
        print("atspi_session.py: run it under dbus-run-session", file=sys.stderr)
        return 2
    import tempfile
    with tempfile.TemporaryDirectory() as scratch:
        listener = start_listener(scratch)
        try:
            status = subprocess.call(argv[1:], env=accessibility_environment())
        finally:
            listener.terminate()
            listener.wait(5)
    if status < 0:
        print("atspi_session.py: %s ended by signal %d" % (argv[1], -status), file=sys.stderr)
        return 1
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv))
