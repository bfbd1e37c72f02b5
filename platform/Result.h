// A value, or the text of why there is none. "The operation failed" is a value here; exceptions are
// kept for programming errors and exhausted memory.
#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace quillmont {

/// Why an operation failed, in words fit for a log line. Never empty.
struct Error {
  std::string text;
};

/// Either a `T` or an `Error`. `Result<void>` carries success alone.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return state_.index() == 0; }

  T& value() { return assert(*this), std::get<0>(state_); }
  const T& value() const { return assert(*this), std::get<0>(state_); }
  T& operator*() { return value(); }
  const T& operator*() const { return value(); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }

  /// Only when the operation failed.
  const std::string& errorText() const { return assert(!*this), std::get<1>(state_).text; }

 private:
  std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  explicit operator bool() const { return !error_; }

  /// Only when the operation failed.
  const std::string& errorText() const { return assert(error_), error_->text; }

 private:
  std::optional<Error> error_;
};

}  // namespace quillmont
