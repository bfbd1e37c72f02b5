// Bytes as text, RFC 4648 section 4.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmont {

std::string base64(std::string_view bytes);

/// The bytes that `text` stands for; white space may stand anywhere in it. Nothing for a foreign
/// character, missing or misplaced padding, and bits that belong to no byte.
std::optional<std::string> bytesOfBase64(std::string_view text);

}  // namespace quillmont
