#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Upload/UploadSink.h"

#include <string>

namespace quarrow {

// The one line that a person reads about a received file: its name, then what was done with it, why nothing
// was, or only its size.
[[nodiscard]] std::string receivedNote(const fennick::UploadRecord &record,
                                       const fennick::ProcessResult &result);

} // namespace quarrow
