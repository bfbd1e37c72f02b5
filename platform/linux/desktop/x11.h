// What Qt does not say of the X server that its windows are on. Main thread.
#pragma once

#include <QRegion>
#include <memory>
#include <string>

struct xcb_connection_t;

namespace quillmont {

/// Ends a connection that is the program's own.
struct CloseX11 {
  void operator()(xcb_connection_t* connection) const;
};
using X11Connection = std::unique_ptr<xcb_connection_t, CloseX11>;

/// A connection of the caller's own to the display that DISPLAY names, closed to child processes;
/// null when there is none.
X11Connection connectToX11();

/// Qt's connection; null when Qt draws on something else. (Qt offers one of its other platforms'
/// objects too, but without a connection.)
xcb_connection_t* qtX11Connection();

/// Whether the X server is one within a Wayland session: it sees little of what goes on outside its
/// own windows.
bool isWithinWayland();

/// Says on `connection` that raw events are known, without which none are sent. False for a server
/// without version 2 of the input extension.
bool announceInputVersion2(xcb_connection_t* connection);

/// Whether the X server tells of every press of a button, whatever it goes to. One within a Wayland
/// session does not, nor one without version 2 of the input extension.
bool tellsOfEveryPress();

/// Whether anybody owns the selection `name` followed by the number of the screen.
bool screenSelectionIsOwned(xcb_connection_t* connection, const std::string& name);

enum class WindowShape { drawn, clickable };

/// Cuts what is drawn, or what takes clicks, of an X window to `region` (device pixels); the empty
/// region stands for the whole window. Nothing happens on other platforms.
void setX11WindowShape(unsigned long window, WindowShape shape, const QRegion& region);

}  // namespace quillmont
