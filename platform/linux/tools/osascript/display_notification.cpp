#include "platform/linux/tools/osascript/display_notification.h"

#include <cstddef>
#include <optional>

namespace quillmont {
namespace {

/// Reads a script from left to right; the first thing that does not fit is the error.
class ScriptReader {
 public:
  explicit ScriptReader(std::string_view script) : script_(script) {}

  void expect(std::string_view words) {
    if (error_) return;
    if (!rest().starts_with(words)) return fail("expected “" + std::string(words) + "”");
    at_ += words.size();
  }

  std::string string() {
    expect("\"");
    std::string text;
    for (; !error_ && at_ < script_.size(); ++at_) {
      if (script_[at_] != '"') {
        text += script_[at_];
      } else if (!text.empty() && script_[at_ - 1] == '\\') {
        text.back() = '"';
      } else {
        ++at_;
        return text;
      }
    }
    fail("a string has no end");
    return {};
  }

  void end() {
    if (!rest().empty()) fail("expected the end of the script");
  }

  const std::optional<Error>& error() const { return error_; }

 private:
  std::string_view rest() const { return script_.substr(at_); }

  void fail(const std::string& reason) {
    if (!error_) error_ = Error{std::to_string(at_) + ": syntax error: " + reason};
  }

  std::string_view script_;
  std::size_t at_ = 0;
  std::optional<Error> error_;
};

}  // namespace

Result<Notification> parseDisplayNotification(std::string_view script) {
  ScriptReader reader(script);
  Notification notification;
  reader.expect("display notification ");
  notification.message = reader.string();
  reader.expect(" with title ");
  notification.title = reader.string();
  reader.expect(" sound name \"default\"");
  reader.end();
  if (reader.error()) return *reader.error();
  return notification;
}

}  // namespace quillmont
