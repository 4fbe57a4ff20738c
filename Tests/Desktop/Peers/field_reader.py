#!/usr/bin/python3
"""Reads the focused field of a process: a process id a line in, a line of JSON out ("{}" when there is none)."""
import json
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib


def focused(node, depth=0):
    states = node.get_state_set()
    if states.contains(Atspi.StateType.FOCUSED) and node.get_text_iface() is not None:
        return node
    if depth > 40:
        return None
    for index in range(min(node.get_child_count(), 400)):
        child = node.get_child_at_index(index)
        found = focused(child, depth + 1) if child is not None else None
        if found is not None:
            return found
    return None


def answer(process_id):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is None or application.get_process_id() != process_id:
            continue
        application.clear_cache()
        node = focused(application)
        if node is not None:
            text = node.get_text_iface()
            return {
                "text": Atspi.Text.get_text(text, 0, -1),
                "role": node.get_role_name(),
                "caret": Atspi.Text.get_caret_offset(text),
            }
    return {}


Atspi.init()
print("ready", flush=True)
context = GLib.MainContext.default()
for line in sys.stdin:
    while context.iteration(False):
        pass
    try:
        result = answer(int(line))
    except GLib.Error as error:  # the program is busy or going: ask again
        result = {}
    print(json.dumps(result), flush=True)
