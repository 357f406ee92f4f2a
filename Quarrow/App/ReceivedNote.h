#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "FennickCore/Upload/UploadSink.h"

#include <string>

namespace quarrow {

// What is remembered with the file of where it came from and what was done with it.
// `left` is what was to be removed and is still in the file.
[[nodiscard]] fennick::PhotoOrigin originOf(const fennick::UploadRecord &record,
                                            const fennick::ProcessResult &result,
                                            const fennick::PrivateData &left = {});

// The one line that a person reads about a received file: its name, then what was done with it, why nothing
// was, or only its size, and what of its private data is still there.
[[nodiscard]] std::string receivedNote(const fennick::UploadRecord &record,
                                       const fennick::ProcessResult &result,
                                       const fennick::PrivateData &left = {});

} // namespace quarrow
