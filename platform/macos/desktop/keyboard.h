// Whose the keyboard is.
#pragma once

namespace quillmont {

/// To the program that had it before this one took it, for when nothing is left to type into.
/// Nothing happens while an alert is open, or when the user has gone elsewhere. Main thread.
void giveKeyboardBack();

}  // namespace quillmont
