#include "platform/linux/tools/lsof/ProcessScan.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/tools/lsof/field_output.h"
#include "platform/posix/Descriptor.h"

namespace quillmont {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

std::string field(char tag, int number) {
  std::string line;
  appendField(line, tag, std::to_string(number));
  return line;
}

/// A memory file lives on a file system of the kernel's own, which few others use.
class ProcessScanTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(file_);
    struct stat status = {};
    ASSERT_EQ(fstat(file_.get(), &status), 0);
    volume_.devices = {status.st_dev};
  }

  /// The lines of this process, from its p line to the next one's.
  std::string ownReport() const {
    const auto report = ProcessScan({volume_}).reports().front();
    const auto start = report.find(field('p', getpid()));
    if (start == report.npos) return "";
    const auto next = report.find("\np", start);
    return report.substr(start, next == report.npos ? next : next + 1 - start);
  }

  Descriptor file_{memfd_create("quillmont\ntest", MFD_CLOEXEC)};
  VolumeIdentity volume_;
};

TEST_F(ProcessScanTest, DescriptorIsToldWithPidCommandNumberAndName) {
  const auto report = ownReport();
  EXPECT_THAT(report, HasSubstr(field('p', getpid()) + 'c'));
  EXPECT_THAT(report, HasSubstr(field('f', file_.get()) + "n/memfd:quillmont\\ntest (deleted)\n"));
}

TEST_F(ProcessScanTest, MappingOutlivesItsDescriptor) {
  constexpr std::size_t kSize = 4096;
  ASSERT_EQ(ftruncate(file_.get(), kSize), 0);
  void* const memory = mmap(nullptr, kSize, PROT_READ, MAP_SHARED, file_.get(), 0);
  ASSERT_NE(memory, MAP_FAILED);
  file_.reset();
  EXPECT_THAT(ownReport(), HasSubstr("\nfmem\nn/memfd:quillmont\\ntest (deleted)\n"));
  munmap(memory, kSize);
  EXPECT_EQ(ownReport(), "");
}

TEST_F(ProcessScanTest, MountIdentifierAloneIsEnough) {
  const auto root = cachedMountPointStatus("/");
  ASSERT_TRUE(root);
  volume_ = {{}, {root->mountId}};
  EXPECT_THAT(ownReport(), HasSubstr("\nfrtd\nn/\n"));
}

TEST_F(ProcessScanTest, OneLookTellsSeveralVolumesApart) {
  const auto root = cachedMountPointStatus("/");
  ASSERT_TRUE(root);
  const auto reports = ProcessScan({{}, volume_, {{}, {root->mountId}}, volume_}).reports();
  ASSERT_EQ(reports.size(), 4u);
  EXPECT_EQ(reports[0], "");
  EXPECT_THAT(reports[1], HasSubstr("n/memfd:quillmont\\ntest (deleted)\n"));
  EXPECT_THAT(reports[2], AllOf(HasSubstr("\nfrtd\nn/\n"), Not(HasSubstr("memfd:quillmont"))));
  EXPECT_EQ(reports[3], reports[1]);
}

TEST_F(ProcessScanTest, VolumeThatNobodyUsesHasNoReport) {
  volume_ = {};
  EXPECT_EQ(ProcessScan({volume_}).reports().front(), "");
}

}  // namespace
}  // namespace quillmont
