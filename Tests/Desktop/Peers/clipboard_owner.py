#!/usr/bin/python3
"""Owns a selection of the display: SELECTION TYPE=FILE... offers each file's bytes under its type. Says "ready" when it
owns it, "lost" when another program has taken it; ends with its standard input."""
import sys
import threading

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk

selection = Gdk.Atom.intern(sys.argv[1], False)
offers = [argument.rpartition("=")[::2] for argument in sys.argv[2:]]
contents = [open(path, "rb").read() for _, path in offers]

window = Gtk.Invisible()
window.realize()
for index, (name, _) in enumerate(offers):
    Gtk.selection_add_target(window, selection, Gdk.Atom.intern(name, False), index)


def give(_, data, index, __):
    data.set(data.get_target(), 8, contents[index])


def lose(*_):
    print("lost", flush=True)
    return False


window.connect("selection-get", give)
window.connect("selection-clear-event", lose)
print("ready" if Gtk.selection_owner_set(window, selection, 0) else "refused", flush=True)
threading.Thread(target=lambda: (sys.stdin.read(), GLib.idle_add(Gtk.main_quit)), daemon=True).start()
Gtk.main()
