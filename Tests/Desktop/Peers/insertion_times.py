#!/usr/bin/python3
"""Says when text can be read in a program's fields: a line "NANOSECONDS TEXT" of the monotonic clock for each insertion,
after the text was read back from the field. PROCESS_ID is the program."""
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

process_id = int(sys.argv[1])


def inserted(event):
    if event.source.get_process_id() != process_id:
        return
    start, length = event.detail1, event.detail2
    text = Atspi.Text.get_text(event.source.get_text_iface(), start, start + length)
    print(time.monotonic_ns(), text.replace("\n", " "), flush=True)


Atspi.init()
listener = Atspi.EventListener.new(inserted)
listener.register("object:text-changed:insert")
print("ready", flush=True)
Atspi.event_main()
