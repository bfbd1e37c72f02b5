// The controls of running programs as a screen reader knows them.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/support/XScreen.h"

struct sd_bus;

namespace quillmont::testing {

/// One accessible object, as it was when it was asked.
struct Control {
  std::string role;  ///< "push button", "check box", "label", "frame", ...
  std::string name;
  std::string description;
  std::set<std::string> states;  ///< "showing", "enabled", "checked", "focused", ...
  ScreenRectangle rectangle;     ///< in the program's own units: points, where it scales
  int depth = 0;                 ///< 0 for a program

  /// Where it is asked again.
  std::string bus;
  std::string path;

  bool is(const std::string& state) const { return states.count(state) != 0; }
};

/// A client of the accessibility bus. Everything is asked anew at each call; what goes away
/// meanwhile is left out. One thread.
class Accessibility {
 public:
  /// `bus` is the address of the bus on which the programs have registered; throws when there is
  /// no registry on it.
  explicit Accessibility(const std::string& bus);
  ~Accessibility();
  Accessibility(const Accessibility&) = delete;
  Accessibility& operator=(const Accessibility&) = delete;

  /// Every object of every program, parents before children, in the programs' order.
  std::vector<Control> controls();

  /// Every object that is on the screen.
  std::vector<Control> shown();

  /// The first one on the screen of this role and name; an empty text stands for any.
  std::optional<Control> find(const std::string& role, const std::string& name = "");

  /// The children of `parent`, also those that do not show.
  std::vector<Control> children(const Control& parent);

  /// Does what a click on the control does, without the pointer; false if it cannot be done.
  bool press(const Control& control);

  /// The tree of what is on the screen, a line each: role, name in quotes, marking states.
  std::string picture();

 private:
  std::vector<std::pair<std::string, std::string>> childReferences(const Control& parent);
  Control describe(const std::string& bus, const std::string& path);
  void addTree(Control control, std::vector<Control>& result);
  std::string property(const Control& control, const char* name);

  sd_bus* bus_ = nullptr;
};

}  // namespace quillmont::testing
