#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "FennickCore/Upload/UploadSink.h"

#include <string>

namespace quarrow {

// Returns the record of the file's origin and processing. `left` is what was to be removed and is still in
// the file.
[[nodiscard]] fennick::PhotoOrigin originOf(const fennick::UploadRecord &record,
                                            const fennick::ProcessResult &result,
                                            const fennick::PrivateData &left = {});

// Returns the line that users read about a received file: its name, then how it was processed, why it was
// not, or only its size, and which private data it still contains.
[[nodiscard]] std::string receivedNote(const fennick::UploadRecord &record,
                                       const fennick::ProcessResult &result,
                                       const fennick::PrivateData &left = {});

} // namespace quarrow
