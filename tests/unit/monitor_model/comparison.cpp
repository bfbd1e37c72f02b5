#include "tests/unit/monitor_model/comparison.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "tests/unit/monitor_model/ObservedMonitor.h"
#include "tests/unit/monitor_model/ReferenceMonitor.h"

namespace quillmont::testing {
namespace {

std::string textOf(const std::vector<DiskImage>& images) {
  std::ostringstream text;
  for (const auto& image : images) {
    text << "\n         [" << image.imagePath << " at " << image.mountPoint << " named "
         << image.volumeName << ", idle " << image.idleSeconds
         << (image.inUse ? ", in use by" : "");
    for (const auto& name : image.activeProcesses) text << " " << name;
    text << (image.isExcluded ? ", excluded]" : "]");
  }
  return text.str();
}

std::string textOf(const std::vector<Deed>& trace, std::size_t from) {
  std::string text;
  for (auto at = from; at < trace.size(); ++at) {
    text += "\n       " + trace[at].what + textOf(trace[at].images);
  }
  return text;
}

std::string textOf(const Standing& standing) {
  return "\n       then queued " + std::to_string(standing.queued) + ", handed over " +
         std::to_string(standing.handedOver) + ", published:" + textOf(standing.published);
}

void count(const std::vector<Deed>& trace, Tally& tally) {
  for (const auto& event : trace) {
    ++tally[event.what.substr(0, event.what.find(' ', event.what.find(' ') + 1))];
  }
}

}  // namespace

std::optional<std::string> differenceIn(const History& history, Tally* tally) {
  ReferenceMonitor model(ManualClock().now());
  ObservedMonitor product;
  std::size_t from = 0;
  for (std::size_t at = 0; at < history.size(); ++at) {
    model.act(history[at]);
    product.act(history[at]);
    const auto expected = model.standing();
    const auto actual = product.standing();
    if (model.trace != product.trace || !(expected == actual)) {
      return "step " + std::to_string(at) + "\n     expected:" + textOf(model.trace, from) +
             textOf(expected) + "\n     but it did:" + textOf(product.trace, from) + textOf(actual);
    }
    if (tally) count(model.trace, *tally);
    model.trace.clear();
    product.trace.clear();
  }
  return std::nullopt;
}

History shortened(History history) {
  for (auto size = std::max<std::size_t>(history.size() / 2, 1); size > 0;) {
    const auto before = history.size();
    for (std::size_t at = 0; at < history.size();) {
      auto candidate = history;
      const auto first = candidate.begin() + static_cast<std::ptrdiff_t>(at);
      const auto count = std::min(size, history.size() - at);
      candidate.erase(first, first + static_cast<std::ptrdiff_t>(count));
      if (differenceIn(candidate)) {
        history = std::move(candidate);
      } else {
        at += size;
      }
    }
    // Single steps again and again, for as long as that helps.
    if (size > 1 || history.size() == before) size /= 2;
  }
  return history;
}

std::string report(const History& history) {
  std::ostringstream text;
  for (std::size_t at = 0; at < history.size(); ++at) {
    text << "  " << at << ". " << textOf(history[at]) << "\n";
  }
  text << "  first difference: " << differenceIn(history).value_or("none") << "\n";
  return text.str();
}

}  // namespace quillmont::testing
