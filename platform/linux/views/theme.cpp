#include "platform/linux/views/theme.h"

namespace quillmont {
namespace {

struct Shades {
  QColor light, dark;
};

QColor black(double alpha) {
  return QColor::fromRgbF(0, 0, 0, static_cast<float>(alpha));
}

QColor white(double alpha) {
  return QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha));
}

Shades shadesOf(Color::Name name) {
  switch (name) {
    case Color::Name::primary:
      return {black(0.847), white(0.847)};
    case Color::Name::secondary:
      return {black(0.498), white(0.549)};
    case Color::Name::red:
      return {{255, 59, 48}, {255, 69, 58}};
    case Color::Name::orange:
      return {{255, 149, 0}, {255, 159, 10}};
    case Color::Name::green:
      return {{40, 205, 65}, {50, 215, 75}};
    case Color::Name::cyan:
      return {{0, 192, 232}, {60, 211, 254}};
    case Color::Name::white:
      return {white(1), white(1)};
    case Color::Name::black:
      return {black(1), black(1)};
    case Color::Name::clear:
      return {black(0), black(0)};
    case Color::Name::separator:
      return {black(0.098), white(0.098)};
    case Color::Name::controlBackground:
      return {{255, 255, 255}, {30, 30, 30}};
    case Color::Name::windowBackground:
      return {{236, 236, 236}, {50, 50, 50}};
  }
  return {black(1), white(1)};
}

bool darkNow = false;

}  // namespace

void setDark(bool dark) {
  darkNow = dark;
}

bool isDark() {
  return darkNow;
}

QColor colorIn(const Color& color, bool dark) {
  const auto shades = shadesOf(color.name);
  auto result = dark ? shades.dark : shades.light;
  result.setAlphaF(static_cast<float>(result.alphaF() * color.alpha));
  return result;
}

QColor colorNow(const Color& color) {
  return colorIn(color, darkNow);
}

}  // namespace quillmont
