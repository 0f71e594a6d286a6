"""What a desktop's bar and its notification service do, played on the session bus: both keep what they
were given and do what a user would do."""

from gi.repository import Gio, GLib

WATCHER_XML = """
<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>
"""

NOTIFICATIONS_XML = """
<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation">
    <arg type="s" direction="out"/><arg type="s" direction="out"/>
    <arg type="s" direction="out"/><arg type="s" direction="out"/>
  </method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
  </method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  <signal name="NotificationClosed"><arg type="u"/><arg type="u"/></signal>
</interface></node>
"""


def pump():
    """Lets calls that have come be answered."""
    context = GLib.MainContext.default()
    while context.iteration(False):
        pass


def call(bus, name, path, interface, method, arguments=None, seconds=5):
    """The answer's values. Our own stand-ins go on answering in the meantime."""
    answers = []
    bus.call(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, seconds * 1000, None,
             lambda source, result: answers.append(result))
    context = GLib.MainContext.default()
    while not answers:
        context.iteration(True)
    return bus.call_finish(answers[0]).unpack()


class Tray:
    """A bar that shows status items."""

    NAME = "org.kde.StatusNotifierWatcher"
    PATH = "/StatusNotifierWatcher"

    def __init__(self, bus):
        self.bus = bus
        self.items = []
        node = Gio.DBusNodeInfo.new_for_xml(WATCHER_XML)
        bus.register_object(self.PATH, node.interfaces[0], self._called, self._property, None)
        call(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName", GLib.Variant("(su)", (self.NAME, 4)))

    def _called(self, bus, sender, path, interface, method, parameters, invocation):
        if method == "RegisterStatusNotifierItem":
            given = parameters.unpack()[0]
            self.items.append((sender, given if given.startswith("/") else "/StatusNotifierItem"))
        invocation.return_value(None)

    def _property(self, bus, sender, path, interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", [sender + path for sender, path in self.items]),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0),
        }[name]

    def property_of(self, item, name):
        sender, path = item
        arguments = GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name))
        return call(self.bus, sender, path, "org.freedesktop.DBus.Properties", "Get", arguments)[0]

    def activate(self, item):
        sender, path = item
        call(self.bus, sender, path, "org.kde.StatusNotifierItem", "Activate", GLib.Variant("(ii)", (0, 0)))

    def menu(self, item):
        """(id, title, whether it can be pressed) of every row; a separator's title is None."""
        _, layout = call(self.bus, item[0], self.property_of(item, "Menu"), "com.canonical.dbusmenu", "GetLayout",
                         GLib.Variant("(iias)", (0, -1, [])))
        rows = []
        for number, properties, _ in layout[2]:
            title = None if properties.get("type") == "separator" else properties.get("label", "").replace("_", "")
            rows.append((number, title, properties.get("enabled", True)))
        return rows

    def press(self, item, title):
        number = next(number for number, row, _ in self.menu(item) if row == title)
        arguments = GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("s", ""), 0))
        call(self.bus, item[0], self.property_of(item, "Menu"), "com.canonical.dbusmenu", "Event", arguments)


class Notifications:
    """A notification service."""

    NAME = "org.freedesktop.Notifications"
    PATH = "/org/freedesktop/Notifications"

    def __init__(self, bus):
        self.bus = bus
        self.shown = []
        node = Gio.DBusNodeInfo.new_for_xml(NOTIFICATIONS_XML)
        bus.register_object(self.PATH, node.interfaces[0], self._called, None, None)
        call(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName", GLib.Variant("(su)", (self.NAME, 4)))

    def _called(self, bus, sender, path, interface, method, parameters, invocation):
        if method == "Notify":
            values = parameters.unpack()
            number = len(self.shown) + 1
            self.shown.append({"id": number, "title": values[3], "body": values[4], "actions": values[5]})
            invocation.return_value(GLib.Variant("(u)", (number,)))
        elif method == "GetCapabilities":
            invocation.return_value(GLib.Variant("(as)", (["body", "actions"],)))
        elif method == "GetServerInformation":
            invocation.return_value(GLib.Variant("(ssss)", ("stand-in", "none", "1", "1.2")))
        else:
            invocation.return_value(None)

    def answer(self, number, action):
        self.bus.emit_signal(None, self.PATH, self.NAME, "ActionInvoked", GLib.Variant("(us)", (number, action)))
