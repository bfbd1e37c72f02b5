#include "platform/linux/views/view_widgets.h"

#include "platform/linux/views/ButtonWidget.h"
#include "platform/linux/views/CheckboxWidget.h"
#include "platform/linux/views/GroupWidget.h"
#include "platform/linux/views/LabelWidget.h"
#include "platform/linux/views/ScrollWidget.h"
#include "platform/linux/views/SegmentsWidget.h"
#include "platform/linux/views/ShapeWidget.h"
#include "platform/linux/views/SwitchWidget.h"
#include "platform/linux/views/SymbolWidget.h"
#include "platform/view/native_properties.h"

namespace quillmont {
namespace {

struct Maker {
  QWidget* parent;
  ViewId id;
  ViewActions& actions;

  NativeWidget* operator()(const NativeGroup&) const { return new GroupWidget(parent); }
  NativeWidget* operator()(const NativeLabel&) const { return new LabelWidget(parent); }
  NativeWidget* operator()(const NativeSymbol&) const { return new SymbolWidget(parent); }
  NativeWidget* operator()(const NativeShape&) const { return new ShapeWidget(parent); }
  NativeWidget* operator()(const NativeScroll&) const { return new ScrollWidget(parent); }
  NativeWidget* operator()(const NativePopover&) const { return nullptr; }
  NativeWidget* operator()(const NativeSwitch&) const {
    return new SwitchWidget(parent, id, actions);
  }
  NativeWidget* operator()(const NativeCheckbox&) const {
    return new CheckboxWidget(parent, id, actions);
  }
  NativeWidget* operator()(const NativeSegments&) const {
    return new SegmentsWidget(parent, id, actions);
  }
  NativeWidget* operator()(const NativeButton&) const {
    return new ButtonWidget(parent, id, actions);
  }
};

QString toolTip(const std::string& help) {
  const auto text = QString::fromStdString(help);
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

// cppcheck-suppress constParameter ; the setter changes it
void setText(QWidget& widget, QString (QWidget::*get)() const, void (QWidget::*set)(const QString&),
             const std::string& text) {
  const auto next = QString::fromStdString(text);
  if ((widget.*get)() != next) (widget.*set)(next);
}

}  // namespace

NativeWidget* makeViewWidget(const NativeContent& content, QWidget* parent, ViewId id,
                             ViewActions& actions) {
  return std::visit(Maker{parent, id, actions}, content);
}

void describeWidget(QWidget& widget, const NativeProperties& properties, bool inButton) {
  auto name = properties.accessibilityLabel;
  if (name.empty()) name = ownText(properties);
  if (name.empty()) name = properties.help;
  // Each of these is announced, changed or not.
  setText(widget, &QWidget::accessibleName, &QWidget::setAccessibleName, name);
  setText(widget, &QWidget::accessibleDescription, &QWidget::setAccessibleDescription,
          properties.help);
  const auto tip = toolTip(properties.help);
  if (widget.toolTip() != tip) widget.setToolTip(tip);
  widget.setAttribute(Qt::WA_TransparentForMouseEvents, letsMouseThrough(properties, inButton));
}

}  // namespace quillmont
