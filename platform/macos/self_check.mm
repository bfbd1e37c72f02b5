#include "platform/macos/self_check.h"

#import <Foundation/Foundation.h>

#include <sstream>

#include "platform/macos/strings.h"
#include "platform/macos/system_interfaces.h"

namespace quillmont {
namespace {

bool has(Class owner, const std::string& method) {
  const SEL selector = NSSelectorFromString(foundationString(method.substr(1)));
  return method.front() == '+' ? [owner respondsToSelector:selector]
                               : [owner instancesRespondToSelector:selector];
}

std::string spelled(const std::string& owner, const std::string& method) {
  return method.substr(0, 1) + "[" + owner + " " + method.substr(1) + "]";
}

std::vector<std::string> methodsOf(const SystemInterface& interface) {
  std::istringstream text(interface.methods);
  std::vector<std::string> result;
  for (std::string method; text >> method;) result.push_back(method);
  return result;
}

}  // namespace

std::span<const SystemInterface> usedInterfaces() {
  return kSystemInterfaces;
}

std::vector<std::string> missingInterfaces(std::span<const SystemInterface> interfaces) {
  std::vector<std::string> missing;
  @autoreleasepool {
    for (const auto& interface : interfaces) {
      const Class owner = NSClassFromString(foundationString(interface.className));
      if (owner == Nil) {
        missing.emplace_back(interface.className);
        continue;
      }
      for (const auto& method : methodsOf(interface)) {
        if (!has(owner, method)) missing.push_back(spelled(interface.className, method));
      }
    }
  }
  return missing;
}

void reportSelfCheck(Log& log) {
  const auto missing = missingInterfaces(usedInterfaces());
  for (const auto& name : missing) log.write("self-check: this system lacks " + name);
  log.write("self-check: " + std::to_string(missing.size()) + " missing");
}

}  // namespace quillmont
