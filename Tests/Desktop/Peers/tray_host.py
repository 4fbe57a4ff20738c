#!/usr/bin/python3
# A panel of its own kind: the watcher and host of status items over the session bus, on another D-Bus library than ours.
# Commands on standard input, one answer a line:
#   item          waits for an item and prints "item"
#   gone          waits until the program of the last one has ended and prints "gone"
#   menu          opens the menu and prints what it shows: texts joined by "|", "-" a separator, "[...]" not to be chosen
#   click TEXT    opens the menu and clicks
#   activate      the left button
#   picture       prints the side of the smallest picture and the mean colour of its mark: SIDE R G B A
#   title         prints the tooltip's title
import struct
import sys

import gi
from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
XML = """<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierHostRegistered"/></interface></node>"""

bus = Gio.bus_get_sync(Gio.BusType.SESSION)
context = GLib.MainContext.default()
items = []


def say(text):
    print(text, flush=True)


def wait_for(condition):
    late = []
    GLib.timeout_add_seconds(30, lambda: late.append(True))
    while not condition() and not late:
        context.iteration(True)
    return not late


def registered(connection, sender, path, interface, method, parameters, invocation):
    if method == "RegisterStatusNotifierItem":
        service = parameters[0]
        item = (sender, service) if service.startswith("/") else (service, "/StatusNotifierItem")
        items.append(item)
        Gio.bus_watch_name_on_connection(bus, sender, Gio.BusNameWatcherFlags.NONE, None,
                                         lambda *_: item in items and items.remove(item))
    invocation.return_value(None)


def watcher_property(connection, sender, path, interface, name):
    return {
        "RegisteredStatusNotifierItems": GLib.Variant("as", [a + b for a, b in items]),
        "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
        "ProtocolVersion": GLib.Variant("i", 0),
    }[name]


def call(path, interface, method, arguments=None):
    # Not a blocking call: the item may be asking the watcher at the same time.
    answer = []
    bus.call(items[-1][0], path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 20000, None,
             lambda connection, result: answer.append(connection.call_finish(result)))
    wait_for(lambda: answer)
    return answer[0].unpack()


def item_property(name):
    return call(items[-1][1], "org.freedesktop.DBus.Properties", "Get",
                GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name)))[0]


MENU = "com.canonical.dbusmenu"


def entries():
    """What a host shows: the layout after it has said that the menu is about to be seen."""
    path = item_property("Menu")
    call(path, MENU, "AboutToShow", GLib.Variant("(i)", (0,)))
    _, (_, _, children) = call(path, MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
    return [(number, p) for number, p, _ in children if p.get("visible", True)]


def shown(properties):
    if properties.get("type") == "separator":
        return "-"
    # "__" is an underscore, a single one would mark the next letter.
    text = properties["label"].replace("__", "\0").replace("_", "").replace("\0", "_")
    return text if properties.get("enabled", True) else "[" + text + "]"


def click(text):
    for number, properties in entries():
        if shown(properties) == text:
            call(item_property("Menu"), MENU, "Event",
                 GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))
            return "clicked"
    return "no such entry"


def picture():
    side, _, pixels = min(item_property("IconPixmap"))
    pixels = bytes(pixels)
    marked = [p for p in struct.iter_unpack("4B", pixels) if p[0] > 0]  # alpha, red, green, blue
    strongest = max(marked)
    alike = [p for p in marked if p[0] == strongest[0]]
    mean = [sum(channel) // len(alike) for channel in zip(*alike)]
    return " ".join(str(number) for number in [side, *mean[1:], mean[0]])


bus.register_object("/StatusNotifierWatcher", Gio.DBusNodeInfo.new_for_xml(XML).interfaces[0], registered,
                    watcher_property, None)
owned = []
Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: owned.append(True), None)
wait_for(lambda: owned)
say("ready")


def obey(channel, condition):
    line = sys.stdin.readline()
    if not line:
        sys.exit(0)
    word, _, rest = line.rstrip("\n").partition(" ")
    if word == "item":
        say("item" if wait_for(lambda: items) else "no item")
    elif word == "gone":
        say("gone" if wait_for(lambda: not items) else "still there")
    elif word == "menu":
        say("|".join(shown(properties) for _, properties in entries()))
    elif word == "click":
        say(click(rest))
    elif word == "activate":
        call(items[-1][1], "org.kde.StatusNotifierItem", "Activate", GLib.Variant("(ii)", (0, 0)))
        say("activated")
    elif word == "picture":
        say(picture())
    elif word == "title":
        say(item_property("ToolTip")[2])
    return True


GLib.io_add_watch(GLib.IOChannel.unix_new(0), GLib.IO_IN | GLib.IO_HUP, obey)
GLib.MainLoop().run()
