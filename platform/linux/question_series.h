// How the program tells the open-files tool that it asks about one image after another.
#pragma once

namespace quillmont {

/// An environment variable that the program sets for its children. The tool then looks for all
/// images at once, and answers what the same process asks next from that look.
inline constexpr char kSeriesVariable[] = "QUILLMONT_ASKS_IN_SERIES";

}  // namespace quillmont
