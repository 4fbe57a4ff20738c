#!/usr/bin/python3
"""A GTK 4 window with one text field of several lines, titled by its argument."""
import sys

import gi

gi.require_version("Gtk", "4.0")
from gi.repository import Gtk


def show(application):
    window = Gtk.ApplicationWindow(application=application, title=sys.argv[1], default_width=400, default_height=200)
    view = Gtk.TextView()
    window.set_child(view)
    window.present()
    view.grab_focus()


application = Gtk.Application(application_id="org.vesk.gtk4field")
application.connect("activate", show)
application.run([])
