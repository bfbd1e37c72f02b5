// quillmont_soak [MINUTES [SEED]]: the real program among images that come and go, for as long as
// one likes. Exit status 1 when anything was found that must not be.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>
#include <string>

#include "tests/soak/Soak.h"
#include "tests/support/own_volumes.h"

namespace quillmont::testing {
namespace {

std::string whyImpossible() {
  if (auto reason = DiskImages::whyImpossible(); !reason.empty()) return reason;
  if (auto reason = DesktopLab::whyImpossible({.tray = Tray::none}); !reason.empty()) return reason;
  return enterOwnVolumes();
}

int soak(double minutes, std::uint64_t seed) {
  if (const auto reason = whyImpossible(); !reason.empty()) {
    std::printf("soak: skipped, %s\n", reason.c_str());
    return 0;
  }
  std::printf("soak: %g minutes with the seed %llu\n", minutes,
              static_cast<unsigned long long>(seed));
  std::fflush(stdout);
  Soak run(seed);
  std::string found;
  try {
    run.run(std::chrono::seconds(static_cast<long>(minutes * 60)));
  } catch (const Finding& finding) {
    found = finding.what();
  }
  std::printf("%s", run.figures().c_str());
  if (found.empty()) {
    std::printf("soak: nothing was found\n");
    return 0;
  }
  std::printf("%ssoak: FOUND with the seed %llu: %s\n", run.lastActions().c_str(),
              static_cast<unsigned long long>(seed), found.c_str());
  return 1;
}

}  // namespace
}  // namespace quillmont::testing

int main(int count, char** arguments) {
  const double minutes = count > 1 ? std::atof(arguments[1]) : 10;
  if (count > 3 || minutes <= 0) {
    std::fprintf(stderr, "usage: quillmont_soak [MINUTES [SEED]]\n");
    return 2;
  }
  try {
    const auto seed = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : std::random_device()();
    return quillmont::testing::soak(minutes, seed);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quillmont_soak: %s\n", error.what());
    return 1;
  }
}
