#include "tests/support/Accessibility.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace quillmont::testing {
namespace {

constexpr char kAccessible[] = "org.a11y.atspi.Accessible";
constexpr char kComponent[] = "org.a11y.atspi.Component";
constexpr char kRegistry[] = "org.a11y.atspi.Registry";
constexpr char kRoot[] = "/org/a11y/atspi/accessible/root";
constexpr char kAction[] = "org.a11y.atspi.Action";
constexpr std::uint32_t kScreenCoordinates = 0;
constexpr int kDeepest = 100;

/// The names of the state bits that tests ask for, by bit.
constexpr std::pair<int, const char*> kStates[] = {
    {1, "active"},     {4, "checked"},     {5, "collapsed"},  {7, "editable"},   {8, "enabled"},
    {9, "expandable"}, {10, "expanded"},   {11, "focusable"}, {12, "focused"},   {16, "modal"},
    {20, "pressed"},   {22, "selectable"}, {23, "selected"},  {24, "sensitive"}, {25, "showing"},
    {30, "visible"},   {39, "default"},    {41, "checkable"}};

struct Unreference {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Unreference>;

sd_bus* connect(const std::string& address) {
  sd_bus* bus = nullptr;
  if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 ||
      sd_bus_set_bus_client(bus, 1) < 0 || sd_bus_start(bus) < 0) {
    sd_bus_unref(bus);
    throw std::runtime_error("no bus at " + address);
  }
  sd_bus_set_method_call_timeout(bus, 5'000'000);
  return bus;
}

/// The reply to a call, null for an error.
template <class... Arguments>
Message call(sd_bus* bus, const std::string& service, const std::string& path,
             const char* interface, const char* method, const char* types, Arguments... arguments) {
  sd_bus_message* reply = nullptr;
  sd_bus_error error = {};
  sd_bus_call_method(bus, service.c_str(), path.c_str(), interface, method, &error, &reply, types,
                     arguments...);
  sd_bus_error_free(&error);
  return Message(reply);
}

}  // namespace

Accessibility::Accessibility(const std::string& bus) : bus_(connect(bus)) {
  if (!call(bus_, kRegistry, kRoot, kAccessible, "GetRoleName", "")) {
    sd_bus_flush_close_unref(bus_);
    throw std::runtime_error("no accessibility registry on the bus");
  }
}

Accessibility::~Accessibility() {
  sd_bus_flush_close_unref(bus_);
}

std::string Accessibility::property(const Control& control, const char* name) {
  char* value = nullptr;
  sd_bus_error error = {};
  std::string result;
  if (sd_bus_get_property_string(bus_, control.bus.c_str(), control.path.c_str(), kAccessible, name,
                                 &error, &value) >= 0) {
    result = value;
  }
  sd_bus_error_free(&error);
  std::free(value);
  return result;
}

Control Accessibility::describe(const std::string& bus, const std::string& path) {
  Control control;
  control.bus = bus;
  control.path = path;
  const auto role = call(bus_, bus, path, kAccessible, "GetRoleName", "");
  const char* text = nullptr;
  if (role && sd_bus_message_read(role.get(), "s", &text) > 0) control.role = text;
  control.name = property(control, "Name");
  control.description = property(control, "Description");
  const auto states = call(bus_, bus, path, kAccessible, "GetState", "");
  std::array<std::uint32_t, 2> bits = {};
  if (states) sd_bus_message_read(states.get(), "au", 2, &bits[0], &bits[1]);
  for (const auto& [bit, name] : kStates) {
    if (bits[static_cast<std::size_t>(bit / 32)] >> (bit % 32) & 1) control.states.insert(name);
  }
  const auto extents = call(bus_, bus, path, kComponent, "GetExtents", "u", kScreenCoordinates);
  auto& place = control.rectangle;
  if (extents) {
    sd_bus_message_read(extents.get(), "(iiii)", &place.x, &place.y, &place.width, &place.height);
  }
  return control;
}

std::vector<std::pair<std::string, std::string>> Accessibility::childReferences(
    const Control& parent) {
  std::vector<std::pair<std::string, std::string>> result;
  const auto reply = call(bus_, parent.bus, parent.path, kAccessible, "GetChildren", "");
  if (!reply || sd_bus_message_enter_container(reply.get(), 'a', "(so)") < 0) return result;
  const char* service = nullptr;
  const char* path = nullptr;
  while (sd_bus_message_read(reply.get(), "(so)", &service, &path) > 0) {
    result.emplace_back(service, path);
  }
  return result;
}

std::vector<Control> Accessibility::children(const Control& parent) {
  std::vector<Control> result;
  for (const auto& [service, path] : childReferences(parent)) {
    auto child = describe(service, path);
    child.depth = parent.depth + 1;
    if (!child.role.empty()) result.push_back(std::move(child));
  }
  return result;
}

void Accessibility::addTree(Control control, std::vector<Control>& result) {
  const auto parent = control;
  result.push_back(std::move(control));
  if (parent.depth >= kDeepest) return;
  for (auto& child : children(parent)) addTree(std::move(child), result);
}

std::vector<Control> Accessibility::controls() {
  Control desktop;
  desktop.bus = kRegistry;
  desktop.path = kRoot;
  desktop.depth = -1;
  std::vector<Control> result;
  for (auto& program : children(desktop)) addTree(std::move(program), result);
  return result;
}

std::vector<Control> Accessibility::shown() {
  auto result = controls();
  std::erase_if(result, [](const Control& control) { return !control.is("showing"); });
  return result;
}

std::optional<Control> Accessibility::find(const std::string& role, const std::string& name) {
  for (auto& control : shown()) {
    if ((role.empty() || control.role == role) && (name.empty() || control.name == name)) {
      return std::move(control);
    }
  }
  return std::nullopt;
}

bool Accessibility::press(const Control& control) {
  const auto reply = call(bus_, control.bus, control.path, kAction, "DoAction", "i", 0);
  int done = 0;
  return reply && sd_bus_message_read(reply.get(), "b", &done) > 0 && done != 0;
}

std::string Accessibility::picture() {
  std::string result;
  for (const auto& control : shown()) {
    result += std::string(static_cast<std::size_t>(control.depth) * 2, ' ') + control.role;
    if (!control.name.empty()) result += " \"" + control.name + "\"";
    for (const auto* state : {"checked", "pressed", "focused"}) {
      if (control.is(state)) result += std::string(" ") + state;
    }
    result += "\n";
  }
  return result;
}

}  // namespace quillmont::testing
