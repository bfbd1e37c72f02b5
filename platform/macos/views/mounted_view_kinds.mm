#include "platform/macos/views/mounted_view_kinds.h"

#include <utility>

#include "platform/macos/strings.h"
#include "platform/macos/views/ButtonView.h"
#include "platform/macos/views/CheckboxView.h"
#include "platform/macos/views/GroupView.h"
#include "platform/macos/views/LabelView.h"
#include "platform/macos/views/PopoverView.h"
#include "platform/macos/views/ScrollView.h"
#include "platform/macos/views/SegmentsView.h"
#include "platform/macos/views/ShapeView.h"
#include "platform/macos/views/SwitchView.h"
#include "platform/macos/views/SymbolView.h"
#include "platform/view/native_properties.h"

namespace quillmont {
namespace {

using Made = std::unique_ptr<MountedView>;

struct Maker {
  const MountedView& anchor;
  ViewId id;
  ViewActions& actions;
  const std::function<void()>& onScroll;

  Made operator()(const NativeGroup&) const { return std::make_unique<GroupView>(); }
  Made operator()(const NativeLabel&) const { return std::make_unique<LabelView>(); }
  Made operator()(const NativeSymbol&) const { return std::make_unique<SymbolView>(); }
  Made operator()(const NativeShape&) const { return std::make_unique<ShapeView>(); }
  Made operator()(const NativeScroll&) const { return std::make_unique<ScrollView>(onScroll); }
  Made operator()(const NativeSwitch&) const { return std::make_unique<SwitchView>(id, actions); }
  Made operator()(const NativeButton&) const { return std::make_unique<ButtonView>(id, actions); }
  Made operator()(const NativeCheckbox&) const {
    return std::make_unique<CheckboxView>(id, actions);
  }
  Made operator()(const NativeSegments&) const {
    return std::make_unique<SegmentsView>(id, actions);
  }
  Made operator()(const NativePopover&) const {
    return std::make_unique<PopoverView>(anchor, id, actions);
  }
};

void setToolTip(NSView* view, const std::string& help) {
  NSString* const next = help.empty() ? nil : foundationString(help);
  NSString* const now = [view toolTip];
  // Set anew, one that is shown would go.
  if (now != next && ![now isEqualToString:next]) [view setToolTip:next];
}

/// A text is read by itself, a name is needed where it is to be called something else.
void name(NSView* view, const NativeProperties& properties, bool inButton) {
  auto label = properties.accessibilityLabel;
  if (label.empty() && ownText(properties).empty()) label = properties.help;
  [view setAccessibilityLabel:label.empty() ? nil : foundationString(label)];
  const bool isToldTwice = properties.help == label || properties.help.empty();
  [view setAccessibilityHelp:isToldTwice ? nil : foundationString(properties.help)];
  const bool isSomething = isControl(properties) ||
                           std::holds_alternative<NativeLabel>(properties.content) ||
                           !label.empty();
  [view setAccessibilityElement:isSomething && !inButton];
}

}  // namespace

std::unique_ptr<MountedView> makeMountedView(const NativeContent& content,
                                             const MountedView& anchor, ViewId id,
                                             ViewActions& actions, std::function<void()> onScroll) {
  return std::visit(Maker{anchor, id, actions, onScroll}, content);
}

void describeView(MountedView& view, const NativeProperties& properties, bool inButton) {
  setToolTip(view.view(), properties.help);
  view.setTakesMouse(!letsMouseThrough(properties, inButton));
  if (isControl(properties) || isFigure(properties)) name(view.view(), properties, inButton);
}

}  // namespace quillmont
