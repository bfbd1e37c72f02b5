// Changes one setting in FOLDER, as the program does on a click. Between two lines on standard
// output, so that whoever watches its system calls sees which ones the write is made of.

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/StderrLog.h"
#include "platform/linux/XmlPropertyLists.h"

namespace {

void say(std::string_view line) {
  if (write(STDOUT_FILENO, line.data(), line.size()) < 0) std::abort();
}

}  // namespace

int main(int argc, char* argv[]) {
  using namespace quillmont;
  if (argc != 4) return 2;
  const XmlPropertyLists lists;
  StderrLog log;
  PropertyListDefaults defaults(argv[1], argv[2], lists, log);
  say("begin\n");
  defaults.setObject("number", std::int64_t{std::atoi(argv[3])});
  say("end\n");
  return 0;
}
