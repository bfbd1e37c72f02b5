#include "tests/screenshots/scenes.h"

#include <chrono>
#include <memory>

#include "tests/screenshots/DarkDesktop.h"
#include "tests/screenshots/Studio.h"

namespace quillmont::testing {
namespace {

using namespace std::chrono_literals;

constexpr char kPhotos[] = "假日照片";
constexpr char kSketches[] = "Orchard Sketches";
constexpr char kNotes[] = "Fieldnotes 4.2";
constexpr char kEject[] = "立即安全推出";
constexpr char kExclude[] = "防止自动推出";
constexpr char kReadmit[] = "允许自动推出";
constexpr char kGear[] = "更多操作";
constexpr char kUninstall[] = "彻底卸载并清理";

void attachThree(Studio& studio) {
  studio.attach(kPhotos, 192s);
  studio.attach(kSketches, 47s);
  studio.attach(kNotes, 30s);
}

/// Opens the panel with a card of each kind. What was excluded once stays so.
void openWithEachKind(Studio& studio) {
  studio.openPanel();
  studio.waitFor("label", kPhotos);
  studio.hold(kSketches);
  if (!studio.desktop().accessibility().find("push button", kReadmit)) {
    studio.click(studio.buttonOf(kNotes, kExclude));
  }
  studio.waitFor("label", "已排除自动推出");
  studio.moveAway();
}

void openFurnished(Studio& studio, bool withImages) {
  if (!withImages) return studio.openPanel();
  attachThree(studio);
  openWithEachKind(studio);
}

/// One image in its three states, each alone on the panel.
void takeStates(Studio& studio) {
  studio.attach(kPhotos, 192s);
  studio.openPanel();
  studio.waitFor("label", "已空闲 03:");
  studio.takePicture("idle");
  studio.hold(kPhotos);
  studio.takePicture("in-use");
  studio.releaseAll();
  studio.click(studio.buttonOf(kPhotos, kExclude));
  studio.waitFor("label", "已排除自动推出");
  studio.moveAway();
  studio.takePicture("excluded");
  studio.click(studio.buttonOf(kPhotos, kReadmit));
  studio.waitFor("label", "已空闲");
}

void takeHover(Studio& studio, const std::string& name) {
  studio.moveTo(studio.buttonOf(kPhotos, kEject));
  studio.waitFor("tool tip", kEject);
  studio.takePicture(name);
  studio.moveAway();
}

void openMenu(Studio& studio) {
  studio.click(studio.waitFor("push button", kGear));
  studio.moveTo(studio.waitFor("push button", kUninstall));
}

/// Answered with no.
void takeAlert(Studio& studio) {
  openMenu(studio);
  studio.click(studio.waitFor("push button", kUninstall));
  const auto question = studio.waitFor("label", "确定要彻底卸载");
  studio.takePicture("alert");
  studio.desktop().key("Escape");
  studio.desktop().waitUntilGone(question.role, question.name);
}

/// On a desktop that was light so far.
void takeDark(Studio& studio, bool withImages) {
  const DarkDesktop dark(studio.desktop().busAddress());
  if (withImages) {
    openWithEachKind(studio);
    takeHover(studio, "hover-dark");
  } else {
    studio.openPanel();
  }
  openMenu(studio);
  studio.takePicture("dark");
}

void takeMany(Studio& studio) {
  if (DiskImages::whyImpossible("btrfs").empty()) {
    studio.attach("An archive of every letter that was ever written from the lighthouse", 600s);
  }
  for (const char* name : {"Ledger 2026", "Woodblock Fonts", "四月账目", "Harbour Charts",
                           "Compiler Kit 15", "Seed Catalogue", "录音 07", "Night Sky Atlas"}) {
    studio.attach(name, 75s);
  }
  studio.openPanel();
  studio.moveTo(studio.waitFor("label", kPhotos));
  studio.waitFor("label", "Night Sky Atlas");
  for (int notch = 0; notch < 2; ++notch) {
    studio.desktop().press(5);
    studio.desktop().release(5);
  }
  studio.takePicture("many");
}

}  // namespace

void takeUsualPictures(const std::string& folder, bool withImages) {
  Studio studio(folder, true);
  studio.openPanel();
  studio.waitFor("label", "暂无挂载的 DMG 镜像");
  studio.takePicture("empty");
  if (withImages) {
    takeStates(studio);
    studio.attach(kSketches, 47s);
    studio.attach(kNotes, 30s);
    openWithEachKind(studio);
    takeHover(studio, "hover");
  }
  takeAlert(studio);
  takeDark(studio, withImages);
  if (withImages) takeMany(studio);
}

void takeSharpPictures(const std::string& folder, bool withImages) {
  Studio studio(folder, true, "top", 2);
  openFurnished(studio, withImages);
  if (withImages) {
    studio.takePicture("panel-light");
    takeHover(studio, "2x");
  }
  openMenu(studio);
  studio.takePicture("gear-menu");
  if (!withImages) return;
  const DarkDesktop dark(studio.desktop().busAddress());
  openWithEachKind(studio);
  studio.takePicture("panel-dark");
}

void takeOpaquePicture(const std::string& folder, bool withImages) {
  Studio studio(folder, false);
  openFurnished(studio, withImages);
  studio.takePicture("no-compositor");
}

void takeBottomPicture(const std::string& folder, bool withImages) {
  Studio studio(folder, true, "bottom");
  openFurnished(studio, withImages);
  studio.takePicture("tray-bottom");
}

}  // namespace quillmont::testing
