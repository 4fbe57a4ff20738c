#!/usr/bin/python3
"""Covers the screen as small screen lockers do: one window in front of all, without asking the window manager."""
import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk

window = Gtk.Window(type=Gtk.WindowType.POPUP)
screen = Gdk.Screen.get_default()
window.set_default_size(screen.get_width(), screen.get_height())
window.move(0, 0)
window.show_all()
Gtk.main()
