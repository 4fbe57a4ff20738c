#!/usr/bin/python3
"""Uses a program's controls as an assistive program does: a line of JSON in, a line of JSON out.

In: "pid", "do", and "role" and "name" of a control that shows. A control's name is that of its label, where it has one;
a row of a list may say more after the name and a comma.
  press   does the control's first action            read   "text", "states" of the control
  type    sets its text to "text"                     texts  everything that can be read in the program's windows
  select  selects "text" where it stands in its text
  nameless  the controls that take the focus but have no name
Out: "ok", and what was asked for. Without such a control "ok" is false.
"""
import json
import sys
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

warnings.simplefilter("ignore", DeprecationWarning)


def nodes(node, depth=0):
    """What shows below a node. The rows of a list that is hidden claim to show, so the list has to as well."""
    if depth > 40 or depth > 0 and not node.get_state_set().contains(Atspi.StateType.SHOWING):
        return
    yield node
    for index in range(min(node.get_child_count(), 200)):
        child = node.get_child_at_index(index)
        if child is not None:
            yield from nodes(child, depth + 1)


def shown(process_id):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is not None and application.get_process_id() == process_id:
            application.clear_cache()
            yield from nodes(application)


def name_of(node):
    for relation in node.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name().rstrip(":")
    return node.get_name()


def is_named(node, name):
    given = name_of(node)
    return given == name or node.get_role_name() == "list item" and given.startswith(name + ", ")


def text_of(node):
    text = node.get_text_iface()
    return Atspi.Text.get_text(text, 0, -1) if text is not None else node.get_name()


def states_of(node):
    states = node.get_state_set()
    wanted = {"checked": Atspi.StateType.CHECKED, "enabled": Atspi.StateType.ENABLED,
              "focused": Atspi.StateType.FOCUSED, "pressed": Atspi.StateType.PRESSED}
    return [name for name, state in wanted.items() if states.contains(state)]


def answer(request):
    process_id = request["pid"]
    if request["do"] == "texts":
        return {"ok": True, "texts": [text_of(node) for node in shown(process_id)]}
    if request["do"] == "nameless":
        nameless = [node.get_role_name() for node in shown(process_id)
                    if node.get_state_set().contains(Atspi.StateType.FOCUSABLE) and not name_of(node)
                    and node.parent.get_role_name() != "combo box"]
        return {"ok": True, "texts": nameless}
    for node in shown(process_id):
        if node.get_role_name() != request["role"] or not is_named(node, request["name"]):
            continue
        if request["do"] == "press":
            return {"ok": bool(Atspi.Action.do_action(node.get_action_iface(), 0))}
        if request["do"] == "type":
            return {"ok": bool(Atspi.EditableText.set_text_contents(node.get_editable_text_iface(), request["text"]))}
        if request["do"] == "select":
            start = text_of(node).find(request["text"])
            end = start + len(request["text"])
            return {"ok": start >= 0 and bool(Atspi.Text.set_selection(node.get_text_iface(), 0, start, end))}
        return {"ok": True, "text": text_of(node), "states": states_of(node)}
    return {"ok": False}


Atspi.init()
print("ready", flush=True)
context = GLib.MainContext.default()
for line in sys.stdin:
    while context.iteration(False):
        pass
    try:
        result = answer(json.loads(line))
    except (GLib.Error, AttributeError, TypeError) as error:  # the control has gone, or cannot do that: ask again
        result = {"ok": False, "why": str(error)}
    print(json.dumps(result), flush=True)
