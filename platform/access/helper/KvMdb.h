// KvMdb - the headers of libmdb, in the one way in which C++ takes them: GLib, which they include as if
// it were C, comes first.
#pragma once

#include <glib.h>

#include <mdbtools.h>
