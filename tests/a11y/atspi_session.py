"""Runs a command with accessibility forced on while a listener process registers for every
AT-SPI event as a screen reader does, so that Qt's bridge really sends them; exits with the
command's status. Usage: dbus-run-session -- python3 atspi_session.py PROGRAM ARGS..."""

import os
import subprocess
import sys


def accessibility_environment():
    return dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1")


def listen_forever():
    import pyatspi
    pyatspi.Registry.registerEventListener(lambda _event: None,
                                           "object:", "window:", "focus:", "document:")
    print("listening", flush=True)
    pyatspi.Registry.start()


def run_listened(command):
    listener = subprocess.Popen([sys.executable, __file__, "--listen"],
                                stdout=subprocess.PIPE, text=True)
    try:
        if listener.stdout.readline() != "listening\n":
            sys.exit("atspi_session.py: no AT-SPI listener (is it run under dbus-run-session?)")
        status = subprocess.call(command, env=accessibility_environment())
    finally:
        listener.kill()
        listener.wait()
    if status < 0:
        sys.exit("atspi_session.py: %s ended by signal %d" % (command[0], -status))
    return status


if __name__ == "__main__":
    if sys.argv[1:] == ["--listen"]:
        listen_forever()
    else:
        sys.exit(run_listened(sys.argv[1:]))
