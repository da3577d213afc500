"""A service manager that is played: service_manager.py <address of a bus> <unit>... <unit file>...

A unit is "<name> <load state> <active state>", a unit file "<path> <state>".
"""
import sys

import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

MANAGER = "org.freedesktop.systemd1.Manager"
units = [word.split(" ") for word in sys.argv[2:]]


class Manager(dbus.service.Object):
    @dbus.service.method(MANAGER, "asas", "a(ssssssouso)")
    def ListUnitsByPatterns(self, states, patterns):
        return [(u[0], "the " + u[0], *u[1:], "sub", "", "/unit", 0, "", "/") for u in units if len(u) == 3]

    @dbus.service.method(MANAGER, "asas", "a(ss)")
    def ListUnitFilesByPatterns(self, states, patterns):
        return [u for u in units if len(u) == 2]


bus = dbus.bus.BusConnection(sys.argv[1], mainloop=DBusGMainLoop())
name = dbus.service.BusName("org.freedesktop.systemd1", bus)
manager = Manager(bus, "/org/freedesktop/systemd1")
print("ready", flush=True)
GLib.MainLoop().run()
