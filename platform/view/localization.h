// The words of the user's language.
#pragma once

#include <functional>
#include <string>

namespace quillmont {

/// Answers the text for a localisable key: the key itself where there is no translation.
using Localizer = std::function<std::string(const std::string& key)>;

}  // namespace quillmont
