#include "tests/support/FakeMount.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace quillmont::testing {
namespace {

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

std::string described(const Color& color) {
  static const char* const names[] = {"primary",
                                      "secondary",
                                      "red",
                                      "orange",
                                      "green",
                                      "cyan",
                                      "white",
                                      "black",
                                      "clear",
                                      "separator",
                                      "controlBackground",
                                      "windowBackground"};
  std::string text = names[static_cast<int>(color.name)];
  if (color.alpha != 1) text += "*" + number(color.alpha);
  return text;
}

std::string described(const Font& font) {
  std::string text = number(font.size);
  if (font.weight == FontWeight::medium) text += " medium";
  if (font.weight == FontWeight::semibold) text += " semibold";
  if (font.weight == FontWeight::bold) text += " bold";
  return text;
}

std::string described(const NativeGroup&) {
  return "group";
}

std::string described(const NativeLabel& label) {
  std::string text =
      "label " + quoted(label.text) + " " + described(label.font) + " " + described(label.color);
  if (label.lineLimit) text += " lines=" + std::to_string(*label.lineLimit);
  if (label.alignment == TextAlignment::center) text += " centred";
  return text;
}

std::string described(const NativeSymbol& symbol) {
  return "symbol " + symbol.name + " " + described(symbol.font) + " " + described(symbol.color);
}

std::string described(const NativeShape& shape) {
  std::string text = "rectangle";
  if (shape.kind == NativeShape::Kind::circle) text = "circle";
  if (shape.kind == NativeShape::Kind::roundedRectangle) {
    text = "rounded(" + number(shape.cornerRadius) + ")";
  }
  if (shape.fill) text += " " + described(*shape.fill);
  if (shape.stroke) {
    text += " stroke " + described(shape.stroke->color) + " " + number(shape.stroke->lineWidth);
  }
  if (shape.shadow) {
    text += " shadow " + described(shape.shadow->color) + " " + number(shape.shadow->radius) + " " +
            number(shape.shadow->offset.x) + "," + number(shape.shadow->offset.y);
  }
  return text;
}

std::string described(const NativeSwitch& control) {
  return std::string("switch ") + (control.isOn ? "on " : "off ") + described(control.tint);
}

std::string described(const NativeCheckbox& control) {
  return std::string("checkbox ") + (control.isOn ? "on " : "off ") + quoted(control.title) + " " +
         described(control.font) + " " + described(control.color);
}

std::string described(const NativeSegments& segments) {
  std::string text = "segments";
  for (std::size_t i = 0; i < segments.labels.size(); ++i) {
    text += segments.selected == i ? " [" + segments.labels[i] + "]" : " " + segments.labels[i];
  }
  return text;
}

std::string described(const NativeButton&) {
  return "button";
}

std::string described(const NativeScroll& scroll) {
  return "scroll of " + number(scroll.contentSize.width) + "x" + number(scroll.contentSize.height);
}

std::string described(const NativePopover& popover) {
  return std::string("popover at ") + (popover.arrowEdge == RectEdge::maxY ? "top" : "other");
}

std::string described(const Rect& frame) {
  return "(" + number(frame.x) + " " + number(frame.y) + " " + number(frame.width) + " " +
         number(frame.height) + ")";
}

std::string described(const NativeProperties& properties) {
  std::string text =
      std::visit([](const auto& content) { return described(content); }, properties.content);
  if (!properties.accessibilityLabel.empty()) text += " name=" + properties.accessibilityLabel;
  if (!properties.help.empty()) text += " help=" + properties.help;
  if (properties.tracksHover) text += " hover";
  if (properties.opacity != 1) text += " opacity=" + number(properties.opacity);
  return text;
}

std::string described(const InsertView& change) {
  return "insert " + described(change.properties) + " at " + std::to_string(change.index);
}
std::string described(const RemoveView&) {
  return "remove";
}
std::string described(const MoveView& change) {
  return "move to " + std::to_string(change.index);
}
std::string described(const UpdateView& change) {
  return "update " + described(change.properties);
}
std::string described(const SetViewFrame& change) {
  return "frame " + described(change.frame);
}

}  // namespace

void FakeMount::apply(const std::vector<ViewChange>& newChanges, Size newSize) {
  ++applications;
  changes = newChanges;
  size = newSize;
  for (const auto& change : changes) {
    std::visit([this](const auto& one) { applyOne(one); }, change);
  }
}

void FakeMount::applyOne(const InsertView& change) {
  ASSERT_EQ(views.count(change.id), 0u) << "inserted twice: " << described(change);
  ASSERT_EQ(views.count(change.parent), 1u) << "no parent: " << described(change);
  auto& siblings = views[change.parent].children;
  ASSERT_LE(change.index, siblings.size());
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(change.index), change.id);
  views[change.id] = {change.parent, change.properties, change.frame, {}};
}

void FakeMount::applyOne(const RemoveView& change) {
  ASSERT_EQ(views.count(change.id), 1u) << "removed what is not there";
  auto& siblings = views[views[change.id].parent].children;
  siblings.erase(std::find(siblings.begin(), siblings.end(), change.id));
  erase(change.id);
}

void FakeMount::erase(ViewId id) {
  const auto children = views[id].children;
  for (const auto child : children) erase(child);
  views.erase(id);
}

void FakeMount::applyOne(const MoveView& change) {
  ASSERT_EQ(views.count(change.id), 1u) << "moved what is not there";
  auto& siblings = views[views[change.id].parent].children;
  siblings.erase(std::find(siblings.begin(), siblings.end(), change.id));
  ASSERT_LE(change.index, siblings.size());
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(change.index), change.id);
}

void FakeMount::applyOne(const UpdateView& change) {
  ASSERT_EQ(views.count(change.id), 1u) << "updated what is not there";
  auto& properties = views[change.id].properties;
  ASSERT_EQ(properties.content.index(), change.properties.content.index()) << "became another kind";
  properties = change.properties;
}

void FakeMount::applyOne(const SetViewFrame& change) {
  ASSERT_EQ(views.count(change.id), 1u) << "framed what is not there";
  views[change.id].frame = change.frame;
}

std::string FakeMount::line(ViewId id) const {
  const auto& view = views.at(id);
  return described(view.properties) + " " + described(view.frame);
}

void FakeMount::append(std::string& picture, ViewId id, int depth) const {
  for (const auto child : views.at(id).children) {
    picture += std::string(static_cast<std::size_t>(depth) * 2, ' ') + line(child) + "\n";
    append(picture, child, depth + 1);
  }
}

std::string FakeMount::picture(ViewId top) const {
  std::string result;
  append(result, top, 0);
  return result;
}

std::string FakeMount::story() const {
  std::string result;
  for (const auto& change : changes) {
    result += std::visit([](const auto& one) { return described(one); }, change) + "\n";
  }
  return result;
}

std::vector<ViewId> FakeMount::findAll(const std::string& text) const {
  std::vector<ViewId> found;
  for (const auto& [id, view] : views) {
    if (id != kRootView && line(id).find(text) != std::string::npos) found.push_back(id);
  }
  return found;
}

ViewId FakeMount::find(const std::string& text) const {
  const auto found = findAll(text);
  EXPECT_EQ(found.size(), 1u) << "views with " << text << " in\n" << picture();
  return found.size() == 1 ? found[0] : 0;
}

Rect FakeMount::frameInPanel(ViewId id) const {
  Rect frame = views.at(id).frame;
  for (auto parent = views.at(id).parent; parent != kRootView; parent = views.at(parent).parent) {
    const auto& view = views.at(parent);
    if (std::holds_alternative<NativeScroll>(view.properties.content) ||
        std::holds_alternative<NativePopover>(view.properties.content)) {
      break;
    }
    frame.x += view.frame.x;
    frame.y += view.frame.y;
  }
  return frame;
}

}  // namespace quillmont::testing
