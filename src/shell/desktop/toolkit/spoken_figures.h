// Reads figures and states aloud: a label whose accessible name says what it shows has its text as value and as text.
#pragma once

namespace korvane {

/// For all labels of this process. Calling it again changes nothing.
void SpeakFigures();

}  // namespace korvane
