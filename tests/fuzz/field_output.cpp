// Names of processes and files on their way into the open-files tool's output and out of it.

#include "platform/linux/tools/lsof/field_output.h"

#include "monitor/open_files.h"
#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {

void tryInput(std::string_view input) {
  const auto value = fieldValue(input);
  require(value.size() <= 4 * input.size(), "a value grows within bounds");
  require(isValidUtf8(value), "a value is UTF-8");
  for (const char* newline : {"\n", "\v", "\f", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    require(value.find(newline) == value.npos, "a value is of one line");
  }

  std::string output;
  appendField(output, 'p', "100");
  appendField(output, 'c', input);
  appendField(output, 'n', input);
  appendField(output, 'c', "another");
  const auto names = countedProcessNames(output, "99", {});
  require(!names.empty() && names.back() == (value == "another" ? value : "another"),
          "a name does not hide what follows");
  require(value == "lsof" || names.front() == value, "a name is read as it was written");
  require(names.size() <= 2, "a name is no other process's");
}

}  // namespace quillmont::testing
