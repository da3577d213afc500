"""What a desktop's session has for a program, on the bus of DBUS_SESSION_BUS_ADDRESS: session.py serve, click, or read.

It serves as notification area, as a notification service that prints each notification on a line and answers none, and as the
registry where screen readers find programs; it clicks on the icon in the notification area; or it reads what a screen reader
does: role, name, description and text of each control that is shown.
"""
import os
import sys

import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ICON = "org.kde.StatusNotifierItem"
NOTES = "org.freedesktop.Notifications"
READERS = "org.a11y.Bus"
REGISTRY = "org.a11y.atspi.Registry"
ROOT = "/org/a11y/atspi/accessible/root"
CONTROL = "org.a11y.atspi.Accessible"
TEXT = "org.a11y.atspi.Text"
SHOWING = 1 << 25


class Session(dbus.service.FallbackObject):
    programs = []

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, "", "s")
    def Introspect(self):
        area = '<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>'
        return f'<node><interface name="{WATCHER}">{area}</interface></node>'

    # There is a notification area, and somebody has the screen read aloud.
    @dbus.service.method(dbus.PROPERTIES_IFACE, "ss", "v")
    def Get(self, interface, name):
        return True

    @dbus.service.method(WATCHER, "s", "")
    def RegisterStatusNotifierItem(self, icon):
        self.icon = icon

    @dbus.service.method(WATCHER, "", "")
    def Click(self):
        bus.call_async(self.icon, "/StatusNotifierItem", ICON, "Activate", "ii", (0, 0), None, None)

    @dbus.service.method(NOTES, "susssasa{sv}i", "u", async_callbacks=("answer", "refuse"))
    def Notify(self, program, replaces, icon, title, text, actions, hints, limit, answer, refuse):
        print(f"{title}: {text}", flush=True)

    @dbus.service.method(READERS, "", "s")
    def GetAddress(self):
        return os.environ["DBUS_SESSION_BUS_ADDRESS"]

    @dbus.service.method("org.a11y.atspi.Socket", "(so)", "(so)")
    def Embed(self, program):
        self.programs.append(program)
        return REGISTRY, ROOT

    @dbus.service.method(CONTROL, "", "a(so)")
    def GetChildren(self):
        return self.programs

    # A program holds a key back until it is answered that no screen reader takes it.
    @dbus.service.method("org.a11y.atspi.DeviceEventController", "(uiuuisb)", "b")
    def NotifyListenersSync(self, key):
        return False


def serve():
    names = [dbus.service.BusName(name, bus) for name in (WATCHER, NOTES, REGISTRY, READERS)]
    session = Session(bus, "/")
    print("ready", flush=True)
    GLib.MainLoop().run()


def click():
    ask((WATCHER, "/"), WATCHER, "Click")


def read():
    for program in ask((REGISTRY, ROOT), CONTROL, "GetChildren"):
        for window in ask(program, CONTROL, "GetChildren"):
            show(window)


def show(control):
    try:
        if not ask(control, CONTROL, "GetState")[0] & SHOWING:
            return
        name, description = (ask(control, dbus.PROPERTIES_IFACE, "Get", CONTROL, word) for word in ("Name", "Description"))
        role = ask(control, CONTROL, "GetRoleName")
        print(role, name, description, ask(control, TEXT, "GetText", 0, -1) if role == "text" else "", sep="|")
        children = ask(control, CONTROL, "GetChildren")
    except dbus.DBusException:
        return  # it has just gone
    for child in children:
        show(child)


def ask(whom, interface, method, *words):
    return bus.call_blocking(*whom, interface, method, None, words)


bus = dbus.SessionBus(mainloop=DBusGMainLoop())
{"serve": serve, "click": click, "read": read}[sys.argv[1]]()
