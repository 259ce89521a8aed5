// The watch's fonts for its language.
#pragma once

#include <string>

namespace platform {

// Sets the fonts of the text classes every layout names (watch_text, watch_text_bold) for
// language ("ja", "zh_TW", "de_DE"): the language goes to fontconfig with them, whose rules
// for the watch draw Han characters in that language's own forms. Open screens redraw.
void applyWatchFonts(const std::string &language);

}  // namespace platform
