#include "settings/ConfigManager.h"

#include <algorithm>

#include "platform/UserDefaults.h"

namespace quillmont {
namespace {

constexpr double kDefaultTimeoutSeconds = 900.0;

double storedNumber(const UserDefaults& defaults, const std::string& key, double otherwise) {
  const auto stored = defaults.object(key);
  return stored ? stored->number().value_or(otherwise) : otherwise;
}

/// A boolean, or a number that is exactly 0 or 1, as stores without a boolean type keep one.
bool storedBoolean(const UserDefaults& defaults, const std::string& key, bool otherwise) {
  const auto stored = defaults.object(key);
  if (!stored) return otherwise;
  if (const auto* boolean = stored->as<bool>()) return *boolean;
  const auto number = stored->number();
  return number == 0.0 || number == 1.0 ? number == 1.0 : otherwise;
}

PropertyList asPropertyList(const std::vector<std::string>& strings) {
  return PropertyListArray(strings.begin(), strings.end());
}

}  // namespace

ConfigManager::ConfigManager(const Host& host)
    : host_(host),
      timeoutSeconds_(*this,
                      storedNumber(host.defaults, keyTimeoutSeconds_, kDefaultTimeoutSeconds)),
      isEnabled_(*this, storedBoolean(host.defaults, keyIsEnabled_, true)),
      excludeList_(*this,
                   host.defaults.stringArray(keyExcludeList_).value_or(std::vector<std::string>())),
      launchAtLogin_(*this, storedBoolean(host.defaults, keyLaunchAtLogin_, false)) {}

double ConfigManager::timeoutSeconds() const {
  return timeoutSeconds_.get();
}

void ConfigManager::setTimeoutSeconds(double seconds) {
  timeoutSeconds_.set(seconds);
  host_.defaults.setDouble(keyTimeoutSeconds_, timeoutSeconds());
}

void ConfigManager::modifyTimeoutSeconds(const std::function<void(double&)>& change) {
  auto seconds = timeoutSeconds();
  change(seconds);
  setTimeoutSeconds(seconds);
}

Subscription ConfigManager::observeTimeoutSeconds(std::function<void(const double&)> observer) {
  return timeoutSeconds_.observe(std::move(observer));
}

bool ConfigManager::isEnabled() const {
  return isEnabled_.get();
}

void ConfigManager::setIsEnabled(bool enabled) {
  isEnabled_.set(enabled);
  host_.defaults.setBool(keyIsEnabled_, isEnabled());
}

void ConfigManager::modifyIsEnabled(const std::function<void(bool&)>& change) {
  auto enabled = isEnabled();
  change(enabled);
  setIsEnabled(enabled);
}

Subscription ConfigManager::observeIsEnabled(std::function<void(const bool&)> observer) {
  return isEnabled_.observe(std::move(observer));
}

std::vector<std::string> ConfigManager::excludeList() const {
  return excludeList_.get();
}

void ConfigManager::setExcludeList(std::vector<std::string> paths) {
  excludeList_.set(std::move(paths));
  host_.defaults.setObject(keyExcludeList_, asPropertyList(excludeList()));
}

void ConfigManager::modifyExcludeList(
    const std::function<void(std::vector<std::string>&)>& change) {
  auto paths = excludeList();
  change(paths);
  setExcludeList(std::move(paths));
}

Subscription ConfigManager::observeExcludeList(
    std::function<void(const std::vector<std::string>&)> observer) {
  return excludeList_.observe(std::move(observer));
}

bool ConfigManager::launchAtLogin() const {
  return launchAtLogin_.get();
}

void ConfigManager::setLaunchAtLogin(bool launch) {
  launchAtLogin_.set(launch);
  host_.defaults.setBool(keyLaunchAtLogin_, launchAtLogin());
  updateLaunchAgent();
}

void ConfigManager::modifyLaunchAtLogin(const std::function<void(bool&)>& change) {
  auto launch = launchAtLogin();
  change(launch);
  setLaunchAtLogin(launch);
}

Subscription ConfigManager::observeLaunchAtLogin(std::function<void(const bool&)> observer) {
  return launchAtLogin_.observe(std::move(observer));
}

void ConfigManager::excludeImage(const std::string& path) {
  if (isExcluded(path)) return;
  modifyExcludeList([&](auto& paths) { paths.push_back(path); });
}

void ConfigManager::includeImage(const std::string& path) {
  if (!isExcluded(path)) return;
  modifyExcludeList([&](auto& paths) { paths.erase(std::find(paths.begin(), paths.end(), path)); });
}

bool ConfigManager::isExcluded(const std::string& path) const {
  return excludeList_.with([&](const std::vector<std::string>& paths) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
  });
}

void ConfigManager::toggleExclude(const std::string& path) {
  if (isExcluded(path)) {
    includeImage(path);
  } else {
    excludeImage(path);
  }
}

}  // namespace quillmont
