#include "tests/soak/Soak.h"

#include <signal.h>

#include <sstream>
#include <thread>

namespace quillmont::testing {
namespace {

using Presence = SoakedImage::Presence;
using namespace std::chrono_literals;

constexpr int kImages = 20;
constexpr double kTimeoutSeconds = 3;
constexpr auto kTurn = 100ms;
constexpr int kTurnsOfAnAction = 5;
constexpr std::size_t kLogShown = 6000;

}  // namespace

Soak::Soak(std::uint64_t seed)
    : seed_(seed),
      random_(seed),
      lab_({.tray = Tray::none}),
      recorder_(lab_.busAddress()),
      session_(lab_.busAddress(), lab_.changes()),
      tool_(session_.environment()),
      panel_(lab_) {
  session_.store({{"timeoutSeconds", kTimeoutSeconds}});
  for (int i = 1; i <= kImages; ++i) {
    images_.push_back(std::make_unique<SoakedImage>(tool_, kLabelsBegin + std::to_string(i)));
  }
  program_ = session_.start();
  log_ = std::make_unique<LogReader>(*program_);
  vitals_ = std::make_unique<Vitals>(program_->pid());
}

void Soak::run(std::chrono::seconds duration) {
  panel_.open();
  began_ = ended_ = Steady::now();
  auto sampledAt = began_;
  for (long turn = 0; Steady::now() - began_ < duration; ++turn) {
    watch();
    if (turn % kTurnsOfAnAction == 0) act();
    if (Steady::now() - sampledAt > 1s) {
      sampledAt = Steady::now();
      vitals_->sample();
    }
    ended_ = Steady::now();
    std::this_thread::sleep_for(kTurn);
  }
  finish();
}

void Soak::finish() {
  vitals_->judge();
  program_->signal(SIGTERM);
  const int status = program_->waitForExit(20s * kSlowness);
  takeLog();
  if (status != 0) throw Finding("the program ends with status " + std::to_string(status));
  // Nobody waits for the tool that announces.
  const auto ejections = counts_["ejections by the program"];
  recorder_.waitForNotifications(static_cast<std::size_t>(ejections), 10s);
  takeAnnouncements();
  counts_["announcements"] = static_cast<long>(announcementsTaken_);
  if (counts_["announcements"] != ejections) throw Finding("not every ejection was announced");
  inspectAll();
}

/// As it was left, and with everything in it.
void Soak::inspectAll() {
  for (auto& image : images_) {
    image->letGo();
    if (image->attached && image->presence() == Presence::mounted) tool_.detach(image->place());
    if (!eventually([&] { return image->presence() == Presence::detached; }, 10s)) {
      throw Finding(image->label() + " stays attached at the end");
    }
    image->inspect();
    bytes_ += image->attach();
    tool_.detach(image->place());
  }
}

std::string Soak::figures() const {
  std::ostringstream text;
  const auto seconds = std::chrono::duration<double>(ended_ - began_).count();
  text << "minutes: " << seconds / 60 << ", seed " << seed_ << "\n";
  for (const auto& [what, count] : counts_) text << what << ": " << count << "\n";
  text << "bytes verified: " << bytes_ << "\n";
  for (const auto& [words, count] : log_->counts())
    text << "log: " << count << " " << words << "\n";
  const auto tell = [&](const char* what, const Vitals::Growth& growth) {
    text << what << ": peak " << growth.peak << ", at rest at the end " << growth.least
         << ", growth " << growth.growth << "\n";
  };
  tell("descriptors", vitals_->descriptors());
  tell("threads", vitals_->threads());
  tell("resident KiB", vitals_->kibibytes());
  text << "longest time until an image was seen or a request was carried out: "
       << std::chrono::duration<double>(worstDelay_).count() << " s\n";
  return text.str();
}

std::string Soak::lastActions() const {
  std::string text = "the last actions:\n";
  for (const auto& action : lastActions_) text += action + "\n";
  const auto log = program_->output();
  return text + "the end of the log:\n" + log.substr(log.size() - std::min(log.size(), kLogShown));
}

}  // namespace quillmont::testing
