#pragma once

#include "FennickCore/Settings/AppSettings.h"

#include <expected>
#include <string>
#include <string_view>

namespace fennick {

// Sets one field from a command line's "KEY=VALUE". KEY is the field's dotted path ("folderLimit",
// "imaging.maxPixels", "naming.prefixSequence.digits"). VALUE is JSON, or plain text if the field is text;
// null clears an optional field. "naming=timestamp" and "naming=prefixSequence" choose a naming, and setting
// anything below "naming.prefixSequence" chooses that one.
//
// Values that are harmful or meaningless are rejected, unlike in the stored record: docs/settings.md lists
// what each field accepts. On failure `settings` is unchanged, and the error is one sentence for users, "中文
// / English", with the key, the value and what is allowed. Any thread.
[[nodiscard]] std::expected<void, std::string> applyOverride(AppSettings &settings,
                                                             std::string_view keyValue);

} // namespace fennick
