# "Rename with Nomen" in the GNOME Files (Nautilus) context menu, through
# the Python extension package; Nomen opens with the selected items listed.
import os
import subprocess

from gi.repository import GObject, Nautilus


class NomenRenameMenu(GObject.GObject, Nautilus.MenuProvider):
    def get_file_items(self, *arguments):
        # Nautilus 43 passes the files; older ones the window first.
        files = arguments[-1]
        paths = [item.get_location().get_path() for item in files]
        paths = [path for path in paths if path]
        if not paths:
            return []
        entry = Nautilus.MenuItem(name="Nomen::RenameWithNomen", label="Rename with Nomen", icon="nomen")
        entry.connect("activate", self.open, paths)
        return [entry]

    def open(self, _entry, paths):
        # Names are given as the file system holds them.
        subprocess.Popen(["nomen"] + [os.fsencode(path) for path in paths], start_new_session=True)
