// Keeps native views in line with a view: asks it for its body when what it shows has changed, lays
// the answer out, and hands the differences to the host.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/RunLoop.h"
#include "platform/view/Metrics.h"
#include "platform/view/NativeView.h"
#include "platform/view/View.h"
#include "platform/view/ViewActions.h"
#include "platform/view/localization.h"

namespace quillmont {

/// Main thread.
class HostingController : public ViewActions {
 public:
  /// Nothing is asked of `rootView` before it is shown. `runLoop` must outlive the controller.
  /// Without `localize`, keys are shown as they are written.
  HostingController(View rootView, RunLoop& runLoop, Localizer localize = {});
  ~HostingController() override;
  HostingController(const HostingController&) = delete;
  HostingController& operator=(const HostingController&) = delete;

  /// Where to show from now on; the native side is empty at first. Both must outlive the
  /// controller's use of them, which ends with unmount() or with the controller.
  void mount(NativeMount& native, const Metrics& metrics);
  void unmount();

  /// A panel that becomes visible is brought up to date before the call returns. One that is hidden
  /// is left alone: its views stay as they were, and its attached popovers are dismissed.
  void setVisible(bool visible);

  /// The panel's size at its last update.
  Size size() const;

  /// Has everything laid out anew, at once if the panel is visible: fonts, scale or colours of the
  /// screen are other ones.
  void metricsDidChange();

  void press(ViewId button) override;
  void toggle(ViewId control, bool isOn) override;
  void select(ViewId segments, std::size_t index) override;
  void hover(ViewId view, bool isInside) override;
  void dismiss(ViewId popover) override;

 private:
  class Panel;
  std::shared_ptr<Panel> panel_;
};

}  // namespace quillmont
