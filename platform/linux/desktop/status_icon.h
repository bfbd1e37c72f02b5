// How a symbol looks in a status bar.
#pragma once

#include <QIcon>
#include <string>

namespace quillmont {

/// The symbol in every size that bars ask for. A bar says nothing of its colour, and many a dark
/// one stands on a light desktop: so it is light with a dark rim, and legible on both.
QIcon statusIcon(const std::string& symbolName);

}  // namespace quillmont
