#!/usr/bin/python3
"""A GTK window with one focused field: gtk_field.py 3|4 FIELD TEXT [START END]

FIELD is area, entry, hidden (an entry that shows bullets), password (GTK 4's own password entry), peeked (the same,
showing its text). Characters from START to END are selected. A line "show" on standard input makes a hidden field show
its text; every line is answered with "done".
"""
import sys

import gi

version, kind, text = sys.argv[1:4]
start, end = (int(word) for word in sys.argv[4:6]) if len(sys.argv) > 5 else (0, 0)
gi.require_version("Gtk", version + ".0")
from gi.repository import GLib, Gtk  # noqa: E402


def area():
    field = Gtk.TextView()
    content = field.get_buffer()
    content.set_text(text)
    content.select_range(content.get_iter_at_offset(start), content.get_iter_at_offset(end))
    return field


def entry():
    field = Gtk.PasswordEntry() if kind in ("password", "peeked") else Gtk.Entry()
    field.set_text(text)
    if kind == "entry":
        field.set_placeholder_text("Subject")
    if kind == "hidden":
        field.set_visibility(False)
    if kind == "peeked":
        field.set_show_peek_icon(True)
        field.get_delegate().set_visibility(True)
    return field


def build(window):
    field = area() if kind == "area" else entry()
    other = Gtk.Button(label="Other")
    box = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
    for child in (other, field):
        box.add(child) if version == "3" else box.append(child)
    window.set_title("GTK %s %s" % (version, kind))
    window.set_default_size(400, 200)
    window.add(box) if version == "3" else window.set_child(box)
    window.show_all() if version == "3" else window.present()
    field.grab_focus()
    if kind != "area":
        field.select_region(start, end)
    return field


def obey(field):
    def line(source, condition):
        if source.readline() == "":
            return False
        field.set_visibility(True)
        print("done", flush=True)
        return True

    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, line)


GLib.set_prgname("vesk-gtk-field")
GLib.set_application_name("GTK field")
if version == "3":
    window = Gtk.Window()
    window.connect("destroy", Gtk.main_quit)
    obey(build(window))
    Gtk.main()
else:
    application = Gtk.Application(application_id="org.example.GtkField")
    application.connect("activate", lambda a: obey(build(Gtk.ApplicationWindow(application=a))))
    application.run([])
