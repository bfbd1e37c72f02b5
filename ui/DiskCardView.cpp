#include "ui/DiskCardView.h"

#include <cstdint>
#include <cstdio>

#include "platform/fatal.h"

namespace quillmont {
namespace {

std::string joined(const std::vector<std::string>& parts) {
  std::string result;
  for (const auto& part : parts) {
    if (&part != &parts.front()) result += ", ";
    result += part;
  }
  return result;
}

View statusText(std::string text) {
  return VerbatimText(std::move(text)).font(Font::system(10)).foregroundColor(Color::secondary);
}

View statusRow(Color dot, View text) {
  return HStack({.spacing = 4},
                {View(Circle().fill(dot)).frame({.width = 6, .height = 6}), std::move(text)});
}

/// A square button with a symbol.
View iconLabel(const char* symbol, Color color, Color background) {
  return Symbol(symbol)
      .font(Font::system(11))
      .foregroundColor(color)
      .frame({.width = 24, .height = 24})
      .background(RoundedRectangle(6).fill(background));
}

std::function<void(bool)> hovering(Binding<std::optional<std::string>> hoverId, std::string id) {
  return [hoverId = std::move(hoverId), id = std::move(id)](bool isInside) {
    hoverId.set(isInside ? std::optional(id) : std::nullopt);
  };
}

}  // namespace

View DiskCardView::body() const {
  return HStack({.spacing = 10},
                {
                    statusIcon(),
                    textColumn(),
                    Spacer(),
                    HStack({.spacing = 6}, {excludeButton(), ejectButton()})
                        .padding(Edges::trailing, 8),
                })
      .padding(Edges::vertical, 8)
      .background(RoundedRectangle(8)
                      .fill(Color::controlBackground.opacity(0.8))
                      .shadow({Color::black.opacity(0.05), 2, {0, 1}}))
      .overlay(RoundedRectangle(8).stroke(Color::primary.opacity(0.05), 1));
}

View DiskCardView::statusIcon() const {
  const Color color = img.isExcluded ? Color::secondary : img.inUse ? Color::green : Color::cyan;
  return Symbol(img.isExcluded ? "opticaldiscdrive" : "opticaldiscdrive.fill")
      .font(Font::system(24))
      .foregroundColor(color)
      .padding(Edges::leading, 8);
}

View DiskCardView::textColumn() const {
  return VStack({.alignment = HorizontalAlignment::leading, .spacing = 2},
                {
                    VerbatimText(img.volumeName)
                        .font(Font::system(13, FontWeight::semibold))
                        .foregroundColor(Color::primary)
                        .lineLimit(1),
                    statusLine(),
                });
}

View DiskCardView::statusLine() const {
  if (img.isExcluded) {
    return Text("已排除自动推出").font(Font::system(10)).foregroundColor(Color::secondary);
  }
  if (img.inUse) {
    const auto text = "活跃中 (" + joined(img.activeProcesses) + ")";
    return statusRow(Color::green, statusText(text).lineLimit(1));
  }
  return statusRow(Color::orange, statusText("已空闲 " + idleTimeText(img.idleSeconds)));
}

View DiskCardView::excludeButton() const {
  const bool isHovered = hoverLockId.get() == img.id();
  const Color background = img.isExcluded ? Color::orange.opacity(0.15)
                           : isHovered    ? Color::primary.opacity(0.05)
                                          : Color::clear;
  return Button(
             onToggleExclude,
             iconLabel(img.isExcluded ? "lock.fill" : "lock.open.fill",
                       img.isExcluded ? Color::orange : Color::secondary.opacity(0.8), background))
      .buttonStyle(PlainButtonStyle())
      .help(img.isExcluded ? "允许自动推出" : "防止自动推出")
      .onHover(hovering(hoverLockId, img.id()));
}

View DiskCardView::ejectButton() const {
  const bool isHovered = hoverEjectId.get() == img.id();
  return Button(onEject, iconLabel("eject.fill", isHovered ? Color::white : Color::red,
                                   isHovered ? Color::red : Color::red.opacity(0.1)))
      .buttonStyle(PlainButtonStyle())
      .help("立即安全推出")
      .onHover(hovering(hoverEjectId, img.id()));
}

std::string idleTimeText(double idleSeconds) {
  constexpr double kLimit = 9223372036854775808.0;  // 2 to the power of 63
  if (!(idleSeconds >= -kLimit && idleSeconds < kLimit)) {
    fatalError("An idle time cannot be told in whole seconds.");
  }
  const auto total = static_cast<std::int64_t>(idleSeconds);
  char text[48];
  std::snprintf(text, sizeof text, "%02lld:%02lld", static_cast<long long>(total / 60),
                static_cast<long long>(total % 60));
  return text;
}

}  // namespace quillmont
