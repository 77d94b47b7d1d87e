#pragma once

// Include after GLib's headers.
#include <memory>

// A GLib object held by one owner, unreferenced when the owner goes.
struct GObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using GOwned = std::unique_ptr<T, GObjectUnref>;
