#include "tests/gnustep/screen.h"

#include <cstdlib>
#include <vector>

#include "platform/macos/strings.h"
#include "tests/gnustep/compat_desktop.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

NSView* viewBelow(NSView* view, const ViewTest& test) {
  if ([view isHidden]) return nil;
  for (NSView* child in [[view subviews] reverseObjectEnumerator]) {
    if (NSView* const found = viewBelow(child, test)) return found;
  }
  return test(view) ? view : nil;
}

ViewTest answers(SEL question, const std::string& text) {
  return [question, text](NSView* view) {
    if (![view respondsToSelector:question]) return false;
    return [[view performSelector:question] isEqual:foundationString(text)] == YES;
  };
}

std::vector<std::string> moveTo(Place place) {
  return {"xdotool", "mousemove", "--sync", std::to_string(place.x), std::to_string(place.y)};
}

}  // namespace

NSView* viewOnScreen(const ViewTest& test) {
  for (NSWindow* window in [[NSApp windows] reverseObjectEnumerator]) {
    if (![window isVisible]) continue;
    if (NSView* const found = viewBelow([window contentView], test)) return found;
  }
  return nil;
}

ViewTest isStatusButton() {
  return [](NSView* view) { return [view isKindOfClass:[NSStatusBarButton class]] == YES; };
}

ViewTest hasHelp(const std::string& text) {
  return answers(@selector(toolTip), text);
}

ViewTest hasLabel(const std::string& text) {
  return answers(@selector(accessibilityLabel), text);
}

ViewTest hasTitle(const std::string& text) {
  return answers(@selector(title), text);
}

ViewTest showsText(const std::string& text) {
  return answers(@selector(stringValue), text);
}

ViewTest isSegmented() {
  return [](NSView* view) { return [view isKindOfClass:[NSSegmentedControl class]] == YES; };
}

Place placeOf(NSView* view, int part, int parts) {
  const NSRect frame = frameOnScreen(view);
  const double share = (part + 0.5) / parts;
  return {static_cast<int>(NSMinX(frame) + share * NSWidth(frame)),
          static_cast<int>(NSMidY(frame))};
}

/// A modal loop looks at what a click has done when the next event comes.
void click(Place place) {
  auto command = moveTo(place);
  for (const char* const word : {"click", "1", "sleep", "0.05", "mousemove_relative", "1", "0"}) {
    command.emplace_back(word);
  }
  run(command);
}

void movePointer(Place place) {
  run(moveTo(place));
}

unsigned long displayWindow(NSWindow* window) {
  return reinterpret_cast<unsigned long>([window windowRef]);
}

void press(const std::string& key, unsigned long window) {
  run({"xdotool", "windowfocus", "--sync", std::to_string(window), "key", key});
}

int greenAt(Place place) {
  const auto point = "1x1+" + std::to_string(place.x) + "+" + std::to_string(place.y);
  const auto text = run({"import", "-window", "root", "-depth", "8", "-crop", point, "rgb:-"});
  return text.standardOutput.size() < 3 ? -1 : static_cast<unsigned char>(text.standardOutput[1]);
}

void takePicture(const std::string& name) {
  const char* const folder = std::getenv("QUILLMONT_PICTURES");
  if (folder) run({"import", "-window", "root", std::string(folder) + "/" + name + ".png"});
}

}  // namespace quillmont::testing
