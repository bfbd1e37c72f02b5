// Runs the benchmarks and prints one table of ratios; takes the arguments of Google Benchmark, of
// which --benchmark_filter is the useful one.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/RatioTable.h"

namespace {

const std::vector<quillmont::RatioRow> kRows = {
    {"open-files tool, few processes : the system's", "openFilesTool/0", "systemOpenFilesTool/0",
     0.1},
    {"open-files tool, many processes : the system's", "openFilesTool/1000",
     "systemOpenFilesTool/1000", 0.1},
    {"open-files tool, few processes : list of a volume's users", "openFilesTool/0",
     "listOfVolumeUsers/0", 0.5},
    {"open-files tool, many processes : list of a volume's users", "openFilesTool/1000",
     "listOfVolumeUsers/1000", 0.5},
    {"open files of a cycle over 10 images : over 1, few processes", "openFilesOfTenVolumes/0",
     "openFilesTool/0", 2.5},
    {"open files of a cycle over 10 images : over 1, many processes", "openFilesOfTenVolumes/1000",
     "openFilesTool/1000", 2.5},
    {"reading a list of 600 images : bare pass of the XML parser", "readAttachedImagesOfSixHundred",
     "bareExpatPassOverTheSame", 1.5},
    {"filtering 1 MB of open files : finding its line ends", "filterOneMegabyteOfOpenFiles",
     "findNewlinesInTheSame", 4},
    {"idle update of 10,000 images : copying their records", "idleUpdateOfTenThousand",
     "copyTenThousandRecords", 3},
    {"starting a tool and reading its answer : bare posix_spawn", "startToolAndRead",
     "bareSpawnAndRead", 1.2},
    {"writing a setting : write, fsync, rename, fsync", "writeSetting", "bareReplaceOfTheSame",
     1.2},
    {"redraw of 1 card : measuring its texts", "redrawCardsWhoseIdleTimesChanged/1",
     "measureTheTextsOfTheSameCards/1", 100},
    {"redraw of 1,000 cards : a frame at 60 Hz", "redrawCardsWhoseIdleTimesChanged/1000",
     "frameAtSixtyHertz", 1},
};

void frameAtSixtyHertz(benchmark::State& state) {
  for (auto _ : state) state.SetIterationTime(1.0 / 60);
}
BENCHMARK(frameAtSixtyHertz)->UseManualTime()->Iterations(1);

}  // namespace

int main(int argc, char* argv[]) {
  // What else a machine does comes and goes: both sides of a row are measured at many moments, in
  // turn.
  std::vector<std::string> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, {"--benchmark_repetitions=9", "--benchmark_min_time=0.1",
                                           "--benchmark_enable_random_interleaving=true"});
  std::vector<char*> pointers;
  for (auto& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;
  quillmont::RatioTable table(kRows);
  benchmark::RunSpecifiedBenchmarks(&table);
  benchmark::Shutdown();
}
