// The whole panel with ten disk images on it, the same on every host.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/view/HostingController.h"
#include "tests/support/FakeMount.h"
#include "tests/support/TestHost.h"
#include "ui/MainView.h"

namespace quillmont::testing {

/// Images that are idle, in use and excluded, with names of all kinds.
class PosedPanel {
 public:
  PosedPanel();

  ViewActions& actions() { return controller_; }

  /// Shows it on a host's views.
  void show(NativeMount& native, const Metrics& metrics);
  void hide() { controller_.unmount(); }

  /// The only view whose line contains `text`.
  ViewId find(const std::string& text) const { return mount_.known.find(text); }

  /// Opens the menu of the gear button.
  void openMenu();

  /// A line a view, children indented: what it is, and where `frameOf` finds it.
  std::string frames(const std::function<Rect(ViewId)>& frameOf) const;

 private:
  /// Remembers what it hands on.
  class Remembering : public NativeMount {
   public:
    void apply(const std::vector<ViewChange>& changes, Size size) override;
    NativeMount* native = nullptr;
    FakeMount known;
  };

  void append(std::string& text, ViewId parent, int depth,
              const std::function<Rect(ViewId)>& frameOf) const;

  TestHost system_;
  FakeDiskImages images_{system_};
  ConfigManager config_{system_.host()};
  const std::shared_ptr<QuillmontDaemon> daemon_;
  Remembering mount_;
  HostingController controller_;
};

/// What the lines of both pictures have not in common, or where they are more than a point apart;
/// empty if there is nothing of that kind.
std::string differencesOfFrames(const std::string& one, const std::string& other);

}  // namespace quillmont::testing
