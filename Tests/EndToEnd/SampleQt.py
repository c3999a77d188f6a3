"""A window with Qt's own controls that writes down what happens to them, as SampleGTK.py does.

Usage: SampleQt.py 5|6 FILE
"""

import importlib
import sys

version, path = sys.argv[1:]
binding = f"PyQt{version}"
QtCore = importlib.import_module(binding + ".QtCore")
QtGui = importlib.import_module(binding + ".QtGui")
QtWidgets = importlib.import_module(binding + ".QtWidgets")

log = open(path, "w", buffering=1)


def write(*words):
    print(*words, file=log)


write("version", QtCore.qVersion())
application = QtWidgets.QApplication(sys.argv[:1])
window = QtWidgets.QWidget()
window.setWindowTitle("Qt " + version)
window.resize(600, 400)

button = QtWidgets.QPushButton("Premi", window)
button.clicked.connect(lambda: write("button"))

check = QtWidgets.QCheckBox("Spunta", window)
check.toggled.connect(lambda _: write("check"))

rows = QtWidgets.QListWidget(window)
rows.addItems([f"Riga {number}" for number in range(4)])
rows.itemSelectionChanged.connect(lambda: write("row", rows.currentRow()))

text = QtWidgets.QTextEdit(window)
text.setLineWrapMode(QtWidgets.QTextEdit.LineWrapMode.NoWrap)
line = "primo secondo terzo " + "e altro ancora " * 20
text.setPlainText("\n".join([line] * 200))


def selected():
    chosen = text.textCursor().selectedText()
    if chosen:
        write("selected", chosen)


text.selectionChanged.connect(selected)
text.verticalScrollBar().valueChanged.connect(lambda value: write("vertical", value))
text.horizontalScrollBar().valueChanged.connect(lambda value: write("horizontal", value))

for part, geometry in (
    (button, (20, 20, 120, 40)),
    (check, (20, 80, 120, 40)),
    (rows, (20, 140, 120, 160)),
    (text, (160, 20, 400, 340)),
):
    part.setGeometry(*geometry)


def place(name, widget, rectangle):
    corner = widget.mapTo(window, rectangle.topLeft())
    write("part", name, f"{corner.x()},{corner.y()},{rectangle.width()},{rectangle.height()}")


def word(name, start, end):
    cursor = text.textCursor()
    cursor.setPosition(start)
    first = text.cursorRect(cursor)
    cursor.setPosition(end)
    last = text.cursorRect(cursor)
    place(name, text.viewport(), QtCore.QRect(first.topLeft(), last.bottomLeft()))


def ready():
    place("button", button, button.rect())
    place("check", check, QtCore.QRect(0, 0, 40, check.height()))
    place("row", rows.viewport(), rows.visualItemRect(rows.item(2)))
    place("text", text, text.rect())
    word("first", 0, 5)
    word("second", 6, 13)
    write("ready")


window.show()
QtCore.QTimer.singleShot(0, ready)
sys.exit(application.exec())
