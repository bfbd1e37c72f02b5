// What the monitor's readers cost, each beside the least that could be done with the same bytes.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstring>
#include <memory>
#include <string>

#include "monitor/attached_images.h"
#include "monitor/open_files.h"
#include "platform/linux/XmlPropertyLists.h"
#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

std::string attachedImagesList(int count) {
  PropertyListArray images;
  for (int number = 0; number < count; ++number) {
    const auto text = std::to_string(number);
    images.push_back(PropertyListDictionary{
        {"image-path", "/home/user/images/image number " + text + ".img"},
        {"system-entities",
         PropertyListArray{PropertyListDictionary{{"dev-entry", "/dev/loop" + text}},
                           PropertyListDictionary{{"dev-entry", "/dev/loop" + text + "p1"},
                                                  {"mount-point", "/Volumes/Volume " + text}}}}});
  }
  return *XmlPropertyLists().xml(PropertyListDictionary{{"images", images}});
}

void readAttachedImagesOfSixHundred(benchmark::State& state) {
  const auto bytes = attachedImagesList(600);
  const XmlPropertyLists lists;
  for (auto _ : state) benchmark::DoNotOptimize(readAttachedImages(*lists.parse(bytes)));
}
BENCHMARK(readAttachedImagesOfSixHundred);

void bareExpatPassOverTheSame(benchmark::State& state) {
  const auto bytes = attachedImagesList(600);
  for (auto _ : state) {
    const auto parser = XML_ParserCreate(nullptr);
    benchmark::DoNotOptimize(XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), 1));
    XML_ParserFree(parser);
  }
}
BENCHMARK(bareExpatPassOverTheSame);

/// About one megabyte of the open-files tool's field form.
std::string openFilesOutput() {
  std::string output;
  for (int pid = 1; output.size() < (1u << 20); ++pid) {
    const auto text = std::to_string(pid);
    output += "p" + text + "\ncprocess" + std::to_string(pid % 50) + "\n";
    for (int file = 0; file < 5; ++file) {
      output += "f" + std::to_string(file) + "\nn/Volumes/Volume/folder/file " + text + "\n";
    }
  }
  return output;
}

void filterOneMegabyteOfOpenFiles(benchmark::State& state) {
  const auto output = openFilesOutput();
  for (auto _ : state) {
    benchmark::DoNotOptimize(countedProcessNames(output, "1", ignoredServicePrefixes()));
  }
}
BENCHMARK(filterOneMegabyteOfOpenFiles);

void findNewlinesInTheSame(benchmark::State& state) {
  const auto output = openFilesOutput();
  for (auto _ : state) {
    std::size_t lines = 0;
    const char* at = output.data();
    const char* const end = at + output.size();
    while ((
        at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at))))) {
      ++lines;
      if (++at == end) break;
    }
    benchmark::DoNotOptimize(lines);
  }
}
BENCHMARK(findNewlinesInTheSame);

constexpr int kMany = 10'000;

/// So many records do not stay in the cache when others use it too; the least time counts.
constexpr int kRepetitions = 5;

/// A monitor that has seen many images, of which none times out.
struct ManyImages {
  ManyImages() {
    for (int number = 0; number < kMany; ++number)
      images.attach("Volume " + std::to_string(number));
    monitor = QuillmontDaemon::make<testing::OpenMonitor>(system.host(), config);
    system.settle();
  }

  testing::TestHost system;
  testing::FakeDiskImages images{system};
  ConfigManager config{system.host()};
  std::shared_ptr<testing::OpenMonitor> monitor;
};

void idleUpdateOfTenThousand(benchmark::State& state) {
  const ManyImages many;
  for (auto _ : state) many.monitor->updateIdleTimesAndCheckTimeout();
}
BENCHMARK(idleUpdateOfTenThousand)->Repetitions(kRepetitions);

/// What every update has to do at least: it publishes a list of its own.
void copyTenThousandRecords(benchmark::State& state) {
  const ManyImages many;
  for (auto _ : state) {
    auto copy = many.monitor->mountedImages();
    benchmark::DoNotOptimize(copy.data());
  }
}
BENCHMARK(copyTenThousandRecords)->Repetitions(kRepetitions);

}  // namespace
}  // namespace quillmont
