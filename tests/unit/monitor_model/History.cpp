#include "tests/unit/monitor_model/History.h"

#include <array>
#include <cstddef>
#include <limits>
#include <random>
#include <sstream>

#include "tests/unit/monitor_model/World.h"

namespace quillmont::testing {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// All of them whole tenths of a second, so that idle times meet timeouts exactly.
constexpr std::array kTimeouts = {0.0, 0.1, 0.3, 1.0,  1.5,  2.0,  2.0,       3.0,
                                  3.0, 5.0, 7.5, -1.0, -0.5, 60.0, kInfinity, kNotANumber};
constexpr std::array kPasses = {0.1, 0.4, 0.5, 0.9, 1.0, 1.0, 1.0, 1.5, 2.0, 5.0};
constexpr std::array kJumps = {0.1, 0.5, 1.0, 2.0, 10.0, -0.5, -1.0, -10.0};
constexpr std::array kAges = {0.0, 0.0, 0.0, 1.0, 2.5, 100.0, 1000.0, -5.0};

struct Weight {
  Kind kind;
  unsigned weight;
};

// How often each comes about, by itself and in the middle of a task of the queue.
constexpr std::array kOutside = {
    Weight{Kind::passTime, 26},   Weight{Kind::runQueue, 24},   Weight{Kind::runMain, 20},
    Weight{Kind::settle, 6},      Weight{Kind::meanwhile, 8},   Weight{Kind::attach, 9},
    Weight{Kind::vanish, 2},      Weight{Kind::use, 5},         Weight{Kind::retouch, 2},
    Weight{Kind::failScans, 2},   Weight{Kind::failChecks, 2},  Weight{Kind::detachments, 4},
    Weight{Kind::muteNotices, 1}, Weight{Kind::jumpClock, 3},   Weight{Kind::exclude, 3},
    Weight{Kind::include, 3},     Weight{Kind::enable, 3},      Weight{Kind::setTimeout, 4},
    Weight{Kind::volumeEvent, 4}, Weight{Kind::ejectByUser, 3}, Weight{Kind::restart, 1}};
constexpr std::array kInside = {
    Weight{Kind::passTime, 10},   Weight{Kind::runMain, 6},     Weight{Kind::jumpClock, 6},
    Weight{Kind::attach, 3},      Weight{Kind::vanish, 2},      Weight{Kind::use, 3},
    Weight{Kind::exclude, 2},     Weight{Kind::include, 1},     Weight{Kind::enable, 1},
    Weight{Kind::setTimeout, 2},  Weight{Kind::volumeEvent, 2}, Weight{Kind::ejectByUser, 2},
    Weight{Kind::detachments, 1}, Weight{Kind::quit, 1},        Weight{Kind::retouch, 1},
    Weight{Kind::letGo, 1}};
// What belongs to the end of a life.
constexpr std::array kEndings = {Kind::moveProgram, Kind::moveProgram, Kind::quit, Kind::letGo};

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}

  unsigned below(unsigned count) { return static_cast<unsigned>(random_() % count); }

  template <class Values>
  auto oneOf(const Values& values) {
    return values[below(static_cast<unsigned>(values.size()))];
  }

  template <class Weights>
  Kind weighted(const Weights& weights) {
    unsigned sum = 0;
    for (const auto& each : weights) sum += each.weight;
    auto left = below(sum);
    std::size_t at = 0;
    while (left >= weights[at].weight) left -= weights[at++].weight;
    return weights[at].kind;
  }

 private:
  std::mt19937 random_;
};

double amountFor(Kind kind, Dice& dice) {
  switch (kind) {
    case Kind::attach:
    case Kind::retouch:
      return dice.oneOf(kAges);
    case Kind::failScans:
    case Kind::failChecks:
      return 1 + dice.below(3);
    case Kind::detachments:
      return dice.below(9);
    case Kind::jumpClock:
      return dice.oneOf(kJumps);
    case Kind::passTime:
      return dice.oneOf(kPasses);
    case Kind::setTimeout:
      return dice.oneOf(kTimeouts);
    default:
      return 0;
  }
}

Step stepOf(Kind kind, Dice& dice) {
  Step step{.kind = kind,
            .which = static_cast<int>(dice.below(static_cast<unsigned>(catalogue().size()))),
            .variant = static_cast<int>(dice.below(64)),
            .amount = amountFor(kind, dice)};
  if (kind != Kind::meanwhile) return step;
  step.variant = static_cast<int>(dice.below(6));
  for (unsigned count = 1 + dice.below(3); count > 0; --count) {
    step.inner.push_back(stepOf(dice.weighted(kInside), dice));
  }
  return step;
}

/// What a step is called, and which of its values mean something.
struct Wording {
  const char* name;
  bool image = false;
  bool variant = false;
  bool amount = false;
};

const Wording& wordingOf(Kind kind) {
  static constexpr std::array kWordings = {Wording{"attach", true, false, true},
                                           Wording{"vanish", true},
                                           Wording{"use", true, true},
                                           Wording{"retouch", true, true, true},
                                           Wording{"failScans", false, true, true},
                                           Wording{"failChecks", false, true, true},
                                           Wording{"detachments", false, true, true},
                                           Wording{"muteNotices", false, true},
                                           Wording{"moveProgram", false, true},
                                           Wording{"jumpClock", false, false, true},
                                           Wording{"passTime", false, false, true},
                                           Wording{"runMain"},
                                           Wording{"exclude", true},
                                           Wording{"include", true},
                                           Wording{"enable", false, true},
                                           Wording{"setTimeout", false, false, true},
                                           Wording{"volumeEvent", false, true},
                                           Wording{"ejectByUser", true},
                                           Wording{"restart"},
                                           Wording{"quit"},
                                           Wording{"letGo"},
                                           Wording{"runQueue"},
                                           Wording{"settle"},
                                           Wording{"meanwhile", false, true}};
  return kWordings[static_cast<std::size_t>(kind)];
}

}  // namespace

History randomHistory(unsigned seed) {
  Dice dice(seed);
  History history;
  // Half of them begin like most lives: with a short timeout, and an image.
  if (dice.below(2)) {
    history.push_back({.kind = Kind::setTimeout, .amount = 1.0 + dice.below(3)});
    history.push_back(stepOf(Kind::attach, dice));
  }
  for (unsigned count = 20 + dice.below(80); count > 0; --count) {
    history.push_back(stepOf(dice.weighted(kOutside), dice));
  }
  if (dice.below(2)) return history;
  history.push_back(stepOf(dice.oneOf(kEndings), dice));
  for (unsigned count = dice.below(15); count > 0; --count) {
    history.push_back(stepOf(dice.weighted(kOutside), dice));
  }
  return history;
}

std::string textOf(const Step& step) {
  const auto& wording = wordingOf(step.kind);
  std::ostringstream text;
  text << wording.name;
  if (wording.image) {
    const auto& image = catalogue().at(static_cast<std::size_t>(step.which));
    text << " " << image.imagePath << " at " << image.mountPoint;
  }
  if (wording.variant) text << ", variant " << step.variant;
  if (wording.amount) text << ", " << step.amount;
  for (const auto& inner : step.inner) text << "\n       while it runs: " << textOf(inner);
  return text.str();
}

}  // namespace quillmont::testing
