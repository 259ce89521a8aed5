#ifndef QUILLSET_PLATFORM_HOST_DISPLAY_H
#define QUILLSET_PLATFORM_HOST_DISPLAY_H

namespace platform {

// Sends what the host's X library would print about the display to the watch's log instead.
// Call before the toolkit opens the display.
void hostDisplayQuiet();

}  // namespace platform

#endif
