// What the thread sanitizer is not to report. It is part of every program that is watched: a file
// of suppressions could not be read by a program that runs as another user or in another root.

/// The sanitizer asks once, before anything else runs.
extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
  return R"(
# The toolkit and what it stands on are not built for the thread sanitizer: their own locks are
# invisible to it. What our code does from within their callbacks is still watched.
called_from_lib:libQt6Core.so.6
called_from_lib:libQt6DBus.so.6
called_from_lib:libQt6Gui.so.6
called_from_lib:libQt6Widgets.so.6
called_from_lib:libQt6XcbQpa.so.6
called_from_lib:libX11.so.6
called_from_lib:libXcursor.so.1
called_from_lib:libXext.so.6
called_from_lib:libXfixes.so.3
called_from_lib:libXrender.so.1
called_from_lib:libdbus-1.so.3
called_from_lib:libfontconfig.so.1
called_from_lib:libglib-2.0.so.0
called_from_lib:libxcb.so.1

# Asked by the toolkit's thread for the message bus, under locks of the toolkit's.
race:quillmont::DBusSignal::metaObject
)";
}
