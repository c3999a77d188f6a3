"""A window with GTK's own controls that writes down what happens to them.

Usage: SampleGTK.py 3.0|4.0 FILE

One line an event: "version NUMBER", "button", "check", "row N", "selected TEXT", "vertical PIXELS", "horizontal PIXELS". First come the
places of the parts within the window's picture, "part NAME X,Y,WIDTH,HEIGHT", and "ready".
"""

import sys

import gi

version, path = sys.argv[1:]
gi.require_version("Gtk", version)
from gi.repository import GLib, Gtk  # noqa: E402

is4 = version == "4.0"
log = open(path, "w", buffering=1)


def write(*words):
    print(*words, file=log)


write("version", f"{Gtk.get_major_version()}.{Gtk.get_minor_version()}.{Gtk.get_micro_version()}")
window = Gtk.Window(title="GTK " + version)
window.set_default_size(600, 400)
loop = GLib.MainLoop()
window.connect("close-request" if is4 else "destroy", lambda *_: loop.quit())

button = Gtk.Button(label="Premi")
button.connect("clicked", lambda *_: write("button"))

check = Gtk.CheckButton(label="Spunta")
check.connect("toggled", lambda *_: write("check"))

rows = Gtk.ListBox()
for number in range(4):
    label = Gtk.Label(label=f"Riga {number}")
    if is4:
        rows.append(label)
    else:
        rows.add(label)
rows.unselect_all()
rows.connect("row-selected", lambda _, row: row and write("row", row.get_index()))

text = Gtk.TextView(cursor_visible=False)
buffer = text.get_buffer()
line = "primo secondo terzo " + "e altro ancora " * 20
buffer.set_text("\n".join([line] * 200))


def selected(*_):
    bounds = buffer.get_selection_bounds()
    if bounds:
        write("selected", buffer.get_text(*bounds, False))


buffer.connect("mark-set", selected)
area = Gtk.ScrolledWindow()
if is4:
    area.set_child(text)
else:
    area.add(text)
for adjustment, name in ((area.get_vadjustment(), "vertical"), (area.get_hadjustment(), "horizontal")):
    adjustment.connect("value-changed", lambda changed, name=name: write(name, round(changed.get_value())))

fixed = Gtk.Fixed()
for part, x, y, width, height in (
    (button, 20, 20, 120, 40),
    (check, 20, 80, 120, 40),
    (rows, 20, 140, 120, 160),
    (area, 160, 20, 400, 340),
):
    part.set_size_request(width, height)
    fixed.put(part, x, y)
if is4:
    window.set_child(fixed)
else:
    window.add(fixed)


def place(name, widget, rectangle=None):
    x, y = widget.translate_coordinates(window, 0, 0)
    width, height = widget.get_allocated_width(), widget.get_allocated_height()
    if rectangle:
        left, top = widget.buffer_to_window_coords(Gtk.TextWindowType.WIDGET, rectangle.x, rectangle.y)
        x, y, width, height = x + left, y + top, rectangle.width, rectangle.height
    if is4:
        offset_x, offset_y = window.get_surface_transform()
        x, y = x + offset_x, y + offset_y
    write("part", name, f"{round(x)},{round(y)},{width},{height}")


def word(name, start, end):
    first = text.get_iter_location(buffer.get_iter_at_offset(start))
    last = text.get_iter_location(buffer.get_iter_at_offset(end))
    first.width = last.x - first.x
    place(name, text, first)


def ready():
    if text.get_iter_location(buffer.get_iter_at_offset(6)).x == 0:
        return True
    place("button", button)
    place("check", check)
    place("row", rows.get_row_at_index(2))
    place("text", area)
    word("first", 0, 5)
    word("second", 6, 13)
    write("ready")
    return False


if is4:
    window.present()
else:
    window.show_all()
GLib.timeout_add(50, ready)
loop.run()
