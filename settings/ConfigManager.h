// The user's settings, and the login item that follows one of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Host.h"
#include "platform/Observable.h"

namespace quillmont {

class PropertyList;

/// The four settings: read from the user-defaults store once, when the object is made, and written
/// to it at every assignment, also of an unchanged value. What is held in memory is the truth while
/// the program runs.
///
/// Assignments come from the main thread, and observers are told there; the getters and
/// isExcluded() may be called from any thread. Nothing here fails: what cannot be read is the
/// default, and a write is not checked.
class ConfigManager : public ObservableObject {
 public:
  /// The settings of the process on the real host, made on first use.
  static ConfigManager& shared();

  explicit ConfigManager(const Host& host);
  virtual ~ConfigManager() = default;
  ConfigManager(const ConfigManager&) = delete;
  ConfigManager& operator=(const ConfigManager&) = delete;

  // Of each property: the value, its assignment, a change in place (one assignment, after
  // `change` has run), and the stream of its values, which begins with the one held now.

  /// Seconds of idleness after which an image is ejected. Any number; none is refused.
  virtual double timeoutSeconds() const;
  virtual void setTimeoutSeconds(double seconds);
  virtual void modifyTimeoutSeconds(const std::function<void(double&)>& change);
  virtual Subscription observeTimeoutSeconds(std::function<void(const double&)> observer);

  /// Whether images are ejected automatically at all.
  virtual bool isEnabled() const;
  virtual void setIsEnabled(bool enabled);
  virtual void modifyIsEnabled(const std::function<void(bool&)>& change);
  virtual Subscription observeIsEnabled(std::function<void(const bool&)> observer);

  /// Paths of the images that are never ejected automatically, in the order of their exclusion.
  virtual std::vector<std::string> excludeList() const;
  virtual void setExcludeList(std::vector<std::string> paths);
  virtual void modifyExcludeList(const std::function<void(std::vector<std::string>&)>& change);
  virtual Subscription observeExcludeList(
      std::function<void(const std::vector<std::string>&)> observer);

  /// Whether the program starts at login. Every assignment calls updateLaunchAgent().
  virtual bool launchAtLogin() const;
  virtual void setLaunchAtLogin(bool launch);
  virtual void modifyLaunchAtLogin(const std::function<void(bool&)>& change);
  virtual Subscription observeLaunchAtLogin(std::function<void(const bool&)> observer);

  /// Adds `path` at the end of the exclude list. Nothing is written if it is there already.
  virtual void excludeImage(const std::string& path);

  /// Removes the first `path` from the exclude list. Nothing is written if there is none.
  virtual void includeImage(const std::string& path);

  /// Paths are compared exactly, letter case included.
  virtual bool isExcluded(const std::string& path) const;

  virtual void toggleExclude(const std::string& path);

  /// Brings the launch agent in line with launchAtLogin(): writes its file and loads it, or unloads
  /// it and deletes the file. Blocks while the service manager's tool runs. Main thread.
  virtual void updateLaunchAgent();

  /// Unloads the launch agent and deletes its file whatever the setting says. Blocks while the
  /// service manager's tool runs. Any thread.
  static void cleanLaunchAgent(const Host& host);

  /// The second half of that alone: the agent stays loaded until the user logs out. Any thread.
  static void deleteLaunchAgent(const Host& host);

 private:
  const Host host_;

  const std::string keyTimeoutSeconds_ = "com.norwaldex.quillmont.timeoutSeconds";
  const std::string keyIsEnabled_ = "com.norwaldex.quillmont.isEnabled";
  const std::string keyExcludeList_ = "com.norwaldex.quillmont.excludeList";
  const std::string keyLaunchAtLogin_ = "com.norwaldex.quillmont.launchAtLogin";

  Published<double> timeoutSeconds_;
  Published<bool> isEnabled_;
  Published<std::vector<std::string>> excludeList_;
  Published<bool> launchAtLogin_;
};

}  // namespace quillmont
