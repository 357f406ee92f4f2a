#pragma once

#include "FennickCore/Settings/AppSettings.h"

#include <expected>
#include <string>
#include <string_view>

namespace fennick {

// Sets one field from a command line's "KEY=VALUE". KEY is the field's dotted path ("folderLimit",
// "imaging.maxPixels", "naming.prefixSequence.digits"). VALUE is JSON, or plain text where the field holds
// text; null clears a field that may be absent. "naming=timestamp" and "naming=prefixSequence" choose a
// naming, and setting anything below "naming.prefixSequence" chooses that one.
//
// A value that would do harm or make no sense is refused, unlike in the stored record: see docs/settings.md
// for what each field takes. On failure `settings` is as it was, and the error is one sentence for people,
// "中文 / English", that names the key, what was given and what is allowed. Any thread.
[[nodiscard]] std::expected<void, std::string> applyOverride(AppSettings &settings,
                                                             std::string_view keyValue);

} // namespace fennick
